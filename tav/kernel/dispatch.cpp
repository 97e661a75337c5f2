#include "tav/kernel/dispatch.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

#include "tav/kernel/entries.h"

namespace tav::kernel {
namespace {

bool always() {
  return true;
}

#ifdef __x86_64__
bool hasAvx512() {
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
         __builtin_cpu_supports("fma");
}
bool hasAvx2() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

constexpr std::array kKernels = {
    Kernel{"avx512", 16, &hasAvx512, &computeAvx512, &prepareAvx512, &selectTailAvx512},
    Kernel{"avx2", 8, &hasAvx2, &computeAvx2, &prepareAvx2, &selectTailAvx2},
    Kernel{"baseline", 4, &always, &computeBaseline, &prepareBaseline, &selectTailBaseline},
    Kernel{"scalar", 1, &always, &computeScalar, &prepareScalar, &selectTailScalar},
};
#else
constexpr std::array kKernels = {
    Kernel{"scalar", 1, &always, &computeScalar, &prepareScalar, &selectTailScalar},
};
#endif

// One more than there are kernels: the last counts for unknown names, which nothing runs.
std::array<std::atomic<std::uint64_t>, kKernels.size() + 1> batches{};

std::atomic<std::uint64_t>& batchesOf(std::string_view name) {
  const auto* found =
      std::ranges::find_if(kKernels, [&](const Kernel& kernel) { return kernel.name == name; });
  return batches[static_cast<std::size_t>(found - kKernels.begin())];
}

}  // namespace

std::span<const Kernel> allKernels() {
  return kKernels;
}

const Kernel* findKernel(std::string_view name) {
  const auto* found =
      std::ranges::find_if(kKernels, [&](const Kernel& kernel) { return kernel.name == name; });
  return found == kKernels.end() ? nullptr : found;
}

const Kernel& bestKernel() {
  return *std::ranges::find_if(kKernels, [](const Kernel& kernel) { return kernel.isSupported(); });
}

void run(const Kernel& kernel, const PlanView& plan, const BatchView& batch, const WorkView& work) {
  kernel.compute(plan, batch, work);
  batchesOf(kernel.name).fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t batchesRun(std::string_view name) {
  return batchesOf(name).load(std::memory_order_relaxed);
}

}  // namespace tav::kernel
