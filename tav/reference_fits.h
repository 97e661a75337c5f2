// The readable computation of one reference's measures in the written form: one voxel after the other
// through simo.
#ifndef TAVMAP_TAV_REFERENCE_FITS_H
#define TAVMAP_TAV_REFERENCE_FITS_H

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "simo/smatrix.h"
#include "tav/voxel_fits.h"

namespace tav {

// What every other path is held to. References and surrogates are detrended once per set and
// interval, which gives the same numbers as doing so for every voxel, at the cost of one further
// copy of the surrogates over the intervals. Nothing is allocated per voxel.
class ReferenceFits : public VoxelFits {
 public:
  explicit ReferenceFits(const VoxelJob& job);

  const VoxelMeasures& compute(std::size_t voxel, std::span<const VoxelData> data) override;
  const VoxelMeasures& computeDrawn(std::size_t voxel, std::span<const VoxelData> data,
                                    const std::uint32_t* drawn) override;

 private:
  // One interval of one set with its detrended references.
  struct Segment {
    Segment(const VoxelSet& set, const TAV_intv& interval);
    int first, length;
    simo::Matrix<float> reference;   // 1 x length, 0-based
    simo::Matrix<float> surrogates;  // surrogates x length, 0-based
  };
  struct Set {
    int file;
    std::deque<Segment> segments;
  };

  void accumulate(std::size_t voxel, std::span<const VoxelData> data);
  void accumulateSegment(const Segment& segment);
  void loadTimeCourse(std::size_t voxel, const VoxelData& data, int nrOfVolumes);
  void loadReference(const simo::Matrix<float>& rows, int row, int length);
  [[nodiscard]] unsigned nextRow();
  [[nodiscard]] bool fit(const simo::FosAvg<float>& averages, std::array<float, kNrOfMeasures>& measures);

  VoxelJob job_;
  std::deque<Set> sets_;
  int nrOfSegments_ = 0;
  std::unique_ptr<simo::Matrix<float>> timeCourse_;  // one voxel: row 0, column = volume
  std::unique_ptr<simo::Matrix<float>> work_;        // row 0: reference, row 1: voxel; 0-based
  std::unique_ptr<simo::FosAvg<float>> averages_;
  std::vector<std::unique_ptr<simo::FosAvg<float>>> nullAverages_;  // one per draw
  std::unique_ptr<simo::FosOrth<float>> joint_, single1_, single2_;
  const std::uint32_t* drawn_ = nullptr;  // surrogates to take instead of drawing
  VoxelMeasures measures_{};
};

}  // namespace tav

#endif
