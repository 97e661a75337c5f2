#include "tav/voxel_path.h"

#include <cstdlib>
#include <string_view>

#include "tav/kernel/dispatch.h"
#include "tav/kernel_path.h"
#include "tav/reference_path.h"

namespace tav {
namespace {

constexpr std::string_view kReferenceName = "reference";

void reportUnusable(std::string_view name, const char* why, std::ostream& errors) {
  errors << "TAVMAP_KERNEL is '" << name << "', which " << why << ". This computer runs: " << kReferenceName;
  for (const kernel::Kernel& known : kernel::allKernels()) {
    if (known.isSupported()) errors << ", " << known.name;
  }
  errors << ". Unset it to use the fastest";
}

}  // namespace

std::unique_ptr<VoxelPath> makeVoxelPath(std::ostream& errors) {
  const char* const forced = std::getenv("TAVMAP_KERNEL");
  const std::string_view name = forced == nullptr ? "" : forced;
  if (name.empty()) return std::make_unique<KernelPath>(kernel::bestKernel());
  if (name == kReferenceName) return std::make_unique<ReferencePath>();
  const kernel::Kernel* const found = kernel::findKernel(name);
  if (found != nullptr && found->isSupported()) return std::make_unique<KernelPath>(*found);
  reportUnusable(name, found == nullptr ? "is no compute path of this program" : "this computer's CPU cannot run", errors);
  return nullptr;
}

}  // namespace tav
