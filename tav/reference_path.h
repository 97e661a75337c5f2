// The readable voxel path: one voxel after the other through simo.
#ifndef TAVMAP_TAV_REFERENCE_PATH_H
#define TAVMAP_TAV_REFERENCE_PATH_H

#include <deque>
#include <memory>
#include <vector>

#include "simo/smatrix.h"
#include "tav/voxel_path.h"

namespace tav {

// What every other path is held to. References and surrogates are detrended once per set and
// interval, which gives the same numbers as doing so for every voxel, at the cost of one further
// copy of the surrogates over the intervals. Nothing is allocated per voxel.
class ReferencePath : public VoxelPath {
 public:
  [[nodiscard]] const char* name() const override { return "reference"; }
  void begin(const VoxelJob& job) override;
  void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data, const VoxelResults& results,
               VoxelCounts& counts) override;

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

  [[nodiscard]] bool isIncluded(std::size_t voxel, std::span<const VoxelData> data) const;
  void accumulate(std::size_t voxel, std::span<const VoxelData> data);
  void accumulateSegment(const Segment& segment);
  void loadTimeCourse(std::size_t voxel, const VoxelData& data, int nrOfVolumes);
  void loadReference(const simo::Matrix<float>& rows, int row, int length);
  [[nodiscard]] VoxelStatus fitVoxel(std::size_t voxel, const VoxelResults& results);
  void fitNulls(std::size_t voxel, const VoxelResults& results, VoxelCounts& counts);

  VoxelJob job_;
  std::deque<Set> sets_;
  int nrOfSegments_ = 0;
  std::unique_ptr<simo::Matrix<float>> timeCourse_;  // one voxel: row 0, column = volume
  std::unique_ptr<simo::Matrix<float>> work_;        // row 0: reference, row 1: voxel; 0-based
  std::unique_ptr<simo::FosAvg<float>> averages_;
  std::vector<std::unique_ptr<simo::FosAvg<float>>> nullAverages_;  // one per draw
  std::unique_ptr<simo::FosOrth<float>> joint_, single1_, single2_;
  FurtherNulls::Block* furtherBlock_ = nullptr;  // of the current call
  std::size_t nrIncluded_ = 0;                   // voxels of the current call so far
};

}  // namespace tav

#endif
