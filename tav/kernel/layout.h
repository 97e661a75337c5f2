// Where the per-voxel variables of a group stand in WorkView::lanes. Each variable is one vector:
// one value per voxel of the group. Positions count vectors.
//
//     own        lag sums of the voxel at lags 0 ... p
//     ownEdges   interval after interval: last p values of its row, latest first; in least squares
//                then the first p
//     truth      own and edges of each reference, the same value in every lane
//     drawn      own and edges of each lane's surrogate
//     first      first value of each interval
//     mean, slope  of each interval
//     cross      lag sums with the rows of a pass at shifts -p ... p: with the reference and the first
//                surrogate, then with further surrogates
//     yRows      lower factor of the voxel's lags, row after row
//     xRows      rows of the reference's lags: p columns for the voxel's lags, then their own
//     inverse    1 / diagonal of the 2p rows
//     probe      u of L u = e, see factor-inl.h
//     yLast      row of the voxel's current value against all 2p lags
//     xLast      row of the reference's current value
#ifndef TAVMAP_TAV_KERNEL_LAYOUT_H
#define TAVMAP_TAV_KERNEL_LAYOUT_H

#include <cstddef>

#include "tav/kernel/plan_view.h"

namespace tav::kernel {

// nrOfEdges: edgeSize() of the plan.
struct LaneLayout {
  constexpr LaneLayout(int order, int nrOfEdges, int nrOfIntervals, int nrOfReferences)
      : p(order),
        seriesSize(p + 1 + nrOfIntervals * nrOfEdges),
        own(0),
        truth(own + seriesSize),
        drawn(truth + nrOfReferences * seriesSize),
        first(drawn + seriesSize),
        mean(first + nrOfIntervals),
        slope(mean + nrOfIntervals),
        cross(slope + nrOfIntervals),
        yRows(cross + kMaxRows * (2 * p + 1)),
        xRows(yRows + p * (p + 1) / 2),
        inverse(xRows + p * p + p * (p + 1) / 2),
        probe(inverse + 2 * p),
        yLast(probe + 2 * p),
        xLast(yLast + 2 * p),
        size(xLast + 2 * p) {}

  int p;
  int seriesSize;  // own sums and edges of one series
  int own, truth, drawn, first, mean, slope, cross, yRows, xRows, inverse, probe, yLast, xLast;
  int size;
};

// Whether the rows of all voxels of a group are kept, for further passes over them.
constexpr bool keepsRows(const PlanView& plan) {
  return plan.draws > 1 || plan.nrOfReferences > 1;
}

// Statistics of the first pass of lag sums, and at most of any pass.
constexpr int nrOfStatistics(int order) {
  return 2 * (2 * order + 1) + order + 1;
}
constexpr int mostStatistics(int order) {
  return kMaxRows * (2 * order + 1);
}
static_assert(mostStatistics(1) >= nrOfStatistics(1) &&
              mostStatistics(kMaxOrder) >= nrOfStatistics(kMaxOrder));

}  // namespace tav::kernel

#endif
