// Made-up data of the size and the compressibility of real ones.
#ifndef TAVMAP_BENCH_FORMATS_SAMPLES_H
#define TAVMAP_BENCH_FORMATS_SAMPLES_H

#include <cstdint>
#include <string>
#include <vector>

#include "formats/image.h"

namespace bench {

// TAVMAP_BENCH_FOLDER, else a folder of the system's temporary one.
[[nodiscard]] std::string scratchFile(const std::string& name);

// Runs of 80 x 80 x 35 voxels and 156 volumes, smooth in space and noisy in time: int16 as from a
// scanner (70 MB), float32 as preprocessed (140 MB), and the same with 0 around the head.
enum class Run { kScanner, kPreprocessed, kStripped };
[[nodiscard]] const char* nameOf(Run run);

// Made once, compressed by zlib as nearly all real ones are; and the mask of the head, 37 % of the voxels.
[[nodiscard]] std::string sampleRun(Run run);
[[nodiscard]] std::string sampleMask();

// A map of 61 x 73 x 50 voxels: noise in a head, 0 around it; and codes 0 to 3 of its voxels.
inline constexpr formats::GridSize kMapSize{61, 73, 50};
[[nodiscard]] std::vector<float> sampleMap();
[[nodiscard]] std::vector<std::uint8_t> sampleStatus();

}  // namespace bench

#endif
