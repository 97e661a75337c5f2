#include "tav/voxel_path.h"

#include <cstdlib>
#include <string_view>

#include "tav/kernel/dispatch.h"
#include "tav/kernel_path.h"
#include "tav/reference_path.h"

namespace tav {

std::size_t drawsPerVoxel(const VoxelJob& job) {
  if (job.nrOfSurrogates < 1) return 0;
  const auto draws = static_cast<std::size_t>(job.nullDraws);
  if (job.fitForm == FitForm::kLeastSquares) return draws;
  std::size_t intervals = 0;
  for (const VoxelSet& set : job.sets) intervals += set.intervals.size();
  return intervals * draws;
}
namespace {

constexpr std::string_view kReferenceName = "reference";

void reportUnusable(const std::string& choice, const char* why, std::ostream& errors) {
  errors << choice << ", which " << why << ". This computer runs: " << kReferenceName;
  for (const kernel::Kernel& known : kernel::allKernels()) {
    if (known.isSupported()) errors << ", " << known.name;
  }
}

// `choice` and `remedy` say where the name comes from.
std::unique_ptr<VoxelPath> pathNamed(const std::string& name, const std::string& choice, const char* remedy,
                                     std::ostream& errors) {
  if (name == kReferenceName) return std::make_unique<ReferencePath>();
  const kernel::Kernel* const found = kernel::findKernel(name);
  if (found != nullptr && found->isSupported()) return std::make_unique<KernelPath>(*found);
  reportUnusable(choice,
                 found == nullptr ? "is no compute path of this program" : "this computer's CPU cannot run",
                 errors);
  errors << remedy;
  return nullptr;
}

}  // namespace

std::unique_ptr<VoxelPath> makeVoxelPath(const std::string& name, std::ostream& errors) {
  if (!name.empty()) return pathNamed(name, "The compute path is '" + name + "'", "", errors);
  const char* const forced = std::getenv("TAVMAP_KERNEL");
  const std::string value = forced == nullptr ? "" : forced;
  if (value.empty()) return std::make_unique<KernelPath>(kernel::bestKernel());
  return pathNamed(value, "TAVMAP_KERNEL is '" + value + "'", ". Unset it to use the fastest", errors);
}

std::unique_ptr<VoxelPath> makeVoxelPath(std::ostream& errors) {
  return makeVoxelPath("", errors);
}

}  // namespace tav
