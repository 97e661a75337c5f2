// Tests that run once for every kernel of this build which the CPU supports.
#ifndef TAVMAP_TESTS_KERNEL_EVERY_KERNEL_H
#define TAVMAP_TESTS_KERNEL_EVERY_KERNEL_H

#include <gtest/gtest.h>

#include <string>

#include "tav/kernel/dispatch.h"

class EveryKernel : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!kernel().isSupported()) GTEST_SKIP() << "this CPU does not run " << kernel().name;
  }
  [[nodiscard]] static const tav::kernel::Kernel& kernel() { return *tav::kernel::findKernel(GetParam()); }
};

inline std::vector<const char*> kernelNames() {
  std::vector<const char*> names;
  for (const auto& kernel : tav::kernel::allKernels()) names.push_back(kernel.name);
  return names;
}

#define INSTANTIATE_KERNELS(suite)                                          \
  INSTANTIATE_TEST_SUITE_P(Kernel, suite, testing::ValuesIn(kernelNames()), \
                           [](const auto& name) { return std::string(name.param); })

#endif
