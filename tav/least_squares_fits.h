// The readable computation of one reference's measures by least squares, in double precision.
#ifndef TAVMAP_TAV_LEAST_SQUARES_FITS_H
#define TAVMAP_TAV_LEAST_SQUARES_FITS_H

#include <cstdint>
#include <vector>

#include "simo/lagged_moments.h"
#include "simo/pair_fit.h"
#include "tav/voxel_fits.h"

namespace tav {

// References and surrogates are detrended once, and their own moments summed over all intervals.
// Nothing is allocated per voxel. Memory: 8 bytes per surrogate and volume of the intervals, and
// 8 (order + 1)^2 per surrogate.
class LeastSquaresFits : public VoxelFits {
 public:
  explicit LeastSquaresFits(const VoxelJob& job);

  // A voxel or reference with values that are not finite has measures that are NaN.
  const VoxelMeasures& compute(std::size_t voxel, std::span<const VoxelData> data) override;
  const VoxelMeasures& computeDrawn(std::size_t voxel, std::span<const VoxelData> data,
                                    const std::uint32_t* drawn) override;

 private:
  // One interval of one set, and where its residuals stand in a series over all intervals.
  struct Segment {
    std::size_t file;
    int first, length;   // volumes, 0-based
    std::size_t offset;  // of its first value
  };
  // Residuals over all intervals, one after the other, and their own moments.
  struct Series {
    std::vector<double> residuals;
    simo::LaggedMoments own;
  };

  void addSegments();
  // Row `row` of the sets' references or surrogates.
  [[nodiscard]] Series seriesOf(const simo::Matrix<float>* VoxelSet::*rows, int row) const;
  void sumOwn(Series& series) const;
  void loadVoxel(std::size_t voxel, std::span<const VoxelData> data);
  [[nodiscard]] bool fit(const Series& reference, std::array<float, kNrOfMeasures>& measures);

  VoxelJob job_;
  std::vector<Segment> segments_;
  Series reference_;
  std::vector<Series> surrogates_;
  Series voxel_;
  simo::LaggedMoments cross_;
  simo::PairFit pairFit_;
  std::vector<std::uint32_t> drawn_;
  VoxelMeasures measures_{};
};

}  // namespace tav

#endif
