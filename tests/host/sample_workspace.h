// A small workspace on disk: an anatomy of 4 x 3 x 2 voxels, a VTC on its grid, VOIs, protocols.
#ifndef TAVMAP_TESTS_HOST_SAMPLE_WORKSPACE_H
#define TAVMAP_TESTS_HOST_SAMPLE_WORKSPACE_H

#include <string>

#include "host/workspace.h"
#include "tests/support/scratch.h"

namespace host_test {

inline constexpr int kSampleX = 4, kSampleY = 3, kSampleZ = 2, kSampleVolumes = 12;
inline constexpr int kSampleTrMs = 2000;

// A NIfTI-1 image of x * y * z bytes, all 0, with voxels of 2 mm and its origin at (-10, -20, -30).
std::string niftiBytes(int x, int y, int z);

// Files are made when they are asked for; every function returns a path.
class SampleFiles {
 public:
  Scratch folder;

  std::string anatomy() const { return folder.write("t1.nii", niftiBytes(kSampleX, kSampleY, kSampleZ)); }
  // Value of cell c at volume v: 1000 + 10 c + v.
  std::string vtc(const std::string& name = "run1.vtc") const;
  // "LH-V1" with voxels (0,0,0), (1,0,0); "RH-V1" with voxel (3,2,1).
  std::string vois() const;
  // Two events of "face" from 0 to 5 s (joined) and one of "house" from 10 to 14 s.
  std::string events() const;
  // "rest", volumes 1 to 6, and "task", volumes 7 to 12.
  std::string volumeTable() const;
};

// All of it, opened; the protocol is the volume table.
void openSample(const SampleFiles& files, host::Workspace& workspace);

}  // namespace host_test

#endif
