// The synthetic data sets of the performance table.
#ifndef TAVMAP_BENCH_KERNEL_WORKLOADS_H
#define TAVMAP_BENCH_KERNEL_WORKLOADS_H

#include <string>
#include <vector>

#include "tav/tav_pars.h"

namespace bench {

struct Workload {
  std::string name;
  int x, y, z, volumes;
  bool isFloat;
  int includedVoxels;  // the others hold zeros
  int order;
  std::vector<tav::TAV_intv> intervals;
  int nrOfSurrogates = 1000;

  [[nodiscard]] int nrOfVoxels() const { return x * y * z; }
  // Time points of one voxel in all intervals.
  [[nodiscard]] int timePoints() const;
};

// W1 ... W4.
[[nodiscard]] std::vector<Workload> standardWorkloads();
[[nodiscard]] Workload atlasWorkload();  // 100,000 voxels x 300 volumes, as prepared runs have them

// The VTC of a workload in `folder`, made when it is not there: first-order autoregressive voxels,
// base 8,000 to 12,000, standard deviation 80 to 200, drift; a fifth coupled to the reference.
// Workloads of the same shape share a file.
[[nodiscard]] std::string dataFile(const std::string& folder, const Workload& workload);

// A request for it: one reference region of 27 voxels, one condition.
[[nodiscard]] tav::TAV_Pars makeRequest(const Workload& workload, const std::string& file);

}  // namespace bench

#endif
