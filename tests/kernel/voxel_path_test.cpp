#include "tav/voxel_path.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>
#include <string>

#include "tests/kernel/differential.h"
#include "tests/kernel/every_kernel.h"

namespace {

// Sets TAVMAP_KERNEL for one scope.
class ForcedKernel {
 public:
  explicit ForcedKernel(const char* name) { setenv("TAVMAP_KERNEL", name, 1); }
  ~ForcedKernel() { unsetenv("TAVMAP_KERNEL"); }
  ForcedKernel(const ForcedKernel&) = delete;
  ForcedKernel& operator=(const ForcedKernel&) = delete;
};

// A job within the kernels' limits whose voxels are not all skipped.
void runSmallJob(tav::VoxelPath& path) {
  differential::Case made;
  differential::makeCase(1, made);
  ASSERT_LT(differential::run(path, made, 1000).counts.skipped, static_cast<int>(made.nrOfVoxels));
}

std::map<std::string, std::uint64_t> batchesOfAll() {
  std::map<std::string, std::uint64_t> batches;
  for (const auto& kernel : tav::kernel::allKernels())
    batches[kernel.name] = tav::kernel::batchesRun(kernel.name);
  return batches;
}

// The names of the kernels that ran during `use`.
template <class Use>
std::vector<std::string> kernelsThatRan(Use use) {
  const auto before = batchesOfAll();
  use();
  std::vector<std::string> names;
  for (const auto& [name, batches] : batchesOfAll()) {
    if (batches != before.at(name)) names.push_back(name);
  }
  return names;
}

std::string usable() {
  std::string names = "reference";
  for (const auto& kernel : tav::kernel::allKernels()) {
    if (kernel.isSupported()) names += std::string(", ") + kernel.name;
  }
  return names;
}

using ForcedPath = EveryKernel;

TEST_P(ForcedPath, IsTheOneThatRuns) {
  const ForcedKernel forced(GetParam());
  std::ostringstream errors;
  const auto ran = kernelsThatRan([&] {
    const auto path = tav::makeVoxelPath(errors);
    ASSERT_NE(path, nullptr) << errors.str();
    EXPECT_STREQ(path->name(), GetParam());
    runSmallJob(*path);
  });
  EXPECT_EQ(ran, std::vector<std::string>{GetParam()});
}

INSTANTIATE_KERNELS(ForcedPath);

TEST(VoxelPath, ForcedToTheReferenceRunsNoKernel) {
  const ForcedKernel forced("reference");
  std::ostringstream errors;
  const auto ran = kernelsThatRan([&] {
    const auto path = tav::makeVoxelPath(errors);
    EXPECT_STREQ(path->name(), "reference");
    runSmallJob(*path);
  });
  EXPECT_TRUE(ran.empty());
}

TEST(VoxelPath, IsTheFastestSupportedKernelByDefault) {
  std::ostringstream errors;
  const auto path = tav::makeVoxelPath(errors);
  EXPECT_STREQ(path->name(), tav::kernel::bestKernel().name);
  EXPECT_TRUE(errors.str().empty());
}

TEST(VoxelPath, RefusesAnUnknownName) {
  const ForcedKernel forced("avx1024");
  std::ostringstream errors;
  EXPECT_EQ(tav::makeVoxelPath(errors), nullptr);
  EXPECT_EQ(errors.str(),
            "TAVMAP_KERNEL is 'avx1024', which is no compute path of this program. This computer runs: " +
                usable() + ". Unset it to use the fastest");
}

TEST(VoxelPath, RefusesAKernelThatTheCpuDoesNotHave) {
  for (const auto& kernel : tav::kernel::allKernels()) {
    if (kernel.isSupported()) continue;
    const ForcedKernel forced(kernel.name);
    std::ostringstream errors;
    EXPECT_EQ(tav::makeVoxelPath(errors), nullptr);
    EXPECT_EQ(errors.str(), std::string("TAVMAP_KERNEL is '") + kernel.name +
                                "', which this computer's CPU cannot run. This computer runs: " + usable() +
                                ". Unset it to use the fastest");
  }
}

TEST(VoxelPath, AnEmptyNameForcesNothing) {
  const ForcedKernel forced("");
  std::ostringstream errors;
  EXPECT_STREQ(tav::makeVoxelPath(errors)->name(), tav::kernel::bestKernel().name);
}

TEST(Kernels, TheLastOneRunsEverywhere) {
  EXPECT_TRUE(tav::kernel::allKernels().back().isSupported());
}

TEST(Kernels, AnUnknownNameIsNoKernelAndNeverRan) {
  EXPECT_EQ(tav::kernel::findKernel("avx1024"), nullptr);
  EXPECT_EQ(tav::kernel::batchesRun("avx1024"), 0U);
}

}  // namespace
