// Runs made up for measurements, with regions in a label image and requests for some of them.
#ifndef TAVMAP_BENCH_STUDY_MADE_STUDY_H
#define TAVMAP_BENCH_STUDY_MADE_STUDY_H

#include <filesystem>

#include "formats/data_types.h"
#include "formats/image.h"

namespace bench {

struct MadeRun {
  const char* name;
  formats::GridSize size;
  int volumes;
  formats::DataType type;
  bool isWhole = false;  // every voxel is one of the brain
};

// An autoregressive course in each voxel of an ellipsoid that nearly fills the grid, a base of about
// a thousand; noise of a few units around it. Compressed; made once.
std::filesystem::path boldFile(const std::filesystem::path& folder, const MadeRun& run);

// A request for the first `references` of 20 regions of 27 voxels; results and work go to folders of
// this name below `folder`.
std::filesystem::path requestFile(const std::filesystem::path& folder, const MadeRun& run, int references,
                                  const char* name);

}  // namespace bench

#endif
