// A small data set for whole sessions: noise on an 8 x 6 x 4 grid, in which one region leads.
#ifndef TAVMAP_TESTS_APP_NOISE_DATA_H
#define TAVMAP_TESTS_APP_NOISE_DATA_H

#include <string>

#include "tests/support/scratch.h"

namespace app_test {

// Files in a folder of their own: t1.nii, run1.vtc, run2.vtc (120 volumes, TR 2 s), vois.json with
// "driver" and "other", events.tsv with "face" and "house", volumes.tsv with "first" and "second"
// half, TAVPlugin.ini (50 surrogates). Cells with x >= 4 follow "driver" one volume later.
class NoiseData {
 public:
  NoiseData();
  Scratch folder;
};

}  // namespace app_test

#endif
