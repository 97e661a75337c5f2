// The figures of a plan on which memory and disk space depend, and what they come to. The formulas' constants
// were fitted to the peak memory of workers and the sizes of folders of simulated studies: grids of 13,440 to
// 272,384 voxels, 1 and 9 references, 1 and 2 conditions, 1 to 20 draws; memory was met within a fifth, disk
// space within 1.4. Megabytes are 10^6 bytes.
#ifndef TAVMAP_PLANNING_SIZES_H
#define TAVMAP_PLANNING_SIZES_H

#include <cstddef>

#include "study/study_plan.h"

namespace planning {

inline constexpr double kMegabyte = 1e6;  // bytes

struct Sizes {
  double gridVoxels = 0, usedVoxels = 0;  // of the grid; inside the mask
  double longestRun = 0;                  // volumes
  double bytesPerValue = 4;               // of the images as stored
  double references = 0, conditions = 0, draws = 1, surrogates = 0;
  bool isPlugin = false;
};

// Reads headers, and the mask or the first volume.
[[nodiscard]] Sizes sizesOf(const study::StudyPlan& plan);

// The most that the worker of an import takes, one that computes `together` references, and drawing the page.
[[nodiscard]] double importMegabytes(const Sizes& sizes);
[[nodiscard]] double referenceMegabytes(const Sizes& sizes, double together);
[[nodiscard]] double reportMegabytes(const Sizes& sizes);

// On disk: of a reference's files, all conditions together, and its part of the page.
[[nodiscard]] double resultMegabytes(const Sizes& sizes);

}  // namespace planning

#endif
