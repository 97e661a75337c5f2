#include "study/voxel_sample.h"

#include <algorithm>

namespace study {
namespace {

constexpr std::size_t kSampledVoxels = 50;

}  // namespace

std::vector<std::size_t> sampleOf(const std::vector<std::uint8_t>& codes,
                                  std::initializer_list<StatusCode> wanted) {
  std::vector<std::size_t> all, sample;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const auto code = static_cast<StatusCode>(codes[i]);
    if (std::find(wanted.begin(), wanted.end(), code) != wanted.end()) all.push_back(i);
  }
  const std::size_t count = std::min(kSampledVoxels, all.size());
  for (std::size_t i = 0; i < count; ++i) sample.push_back(all[i * all.size() / count]);
  return sample;
}

}  // namespace study
