// The phases of one run, each timed on its own.
#ifndef TAVMAP_BENCH_KERNEL_PHASES_H
#define TAVMAP_BENCH_KERNEL_PHASES_H

#include <string>

#include "bench/kernel/workloads.h"
#include "tav/fit_form.h"

namespace bench {

// Seconds, the best of the repetitions for each phase on its own.
struct Phases {
  double surrogates;  // fit of the reference and simulation of its surrogates
  double prepare;     // tables of reference and surrogates
  double loop;        // reading and computing every voxel
  double transfer;    // all maps into the store, with their thresholds
  double thresholds;  // of that, the thresholds of all maps
  double whole;       // Init to saved files
  int illDefined, surrogatesIllDefined;
  double checksum;  // sum of all measures, so that two paths can be compared at a glance

  // Takes the lower of each phase.
  void lower(const Phases& other);
};

// With the path that TAVMAP_KERNEL would name `kernel`, and `draws` surrogates per voxel. kLeastSquares: as
// method "calibrated" computes, with surrogates from the courses' own residuals.
[[nodiscard]] Phases measurePhases(const Workload& workload, const std::string& file,
                                   const std::string& kernel, int repetitions, int draws = 1,
                                   tav::FitForm form = tav::FitForm::kWritten);

// Processor seconds per reference of one run over so many references of an atlas, each a region of the grid's
// own voxels, by least squares with `draws` surrogates per voxel: maps, thresholds and p of single voxels.
[[nodiscard]] double atlasSecondsPerReference(const Workload& workload, const std::string& file,
                                              const std::string& kernel, int references, int draws);

// Seconds that pass while so many whole maps of surrogates are made, with their maxima and clusters.
[[nodiscard]] double wholeMapSeconds(const Workload& workload, const std::string& file,
                                     const std::string& kernel, int maps, int threads);

}  // namespace bench

#endif
