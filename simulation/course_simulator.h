// The courses of all brain voxels, one time point after another, as the model has them.
#ifndef TAVMAP_SIMULATION_COURSE_SIMULATOR_H
#define TAVMAP_SIMULATION_COURSE_SIMULATOR_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulation/influence_model.h"
#include "simulation/noise_stream.h"

namespace simulation {

inline constexpr double kNoiseAutoregression = 0.3;  // of the voxels outside all regions

// Voxels of the reference are its course plus noise that sums to zero over the region at every time
// point, so that the region's mean is the course itself. Voxels without a region are first-order
// autoregressions of their own. Holds one value per voxel, whatever the length of a run.
class CourseSimulator {
 public:
  // `labels` of the brain's voxels: 0, or the number of a region from 1, each with a voxel at least.
  // Both references must outlive the simulator. Runs in before the first time point, long
  // enough that the start is forgotten.
  CourseSimulator(const InfluenceModel& model, std::vector<std::int32_t> labels, NoiseStream& random);

  // From the next time point on another model holds, with as many regions. It must outlive the simulator.
  void use(const InfluenceModel& model) { model_ = &model; }

  // The next time point: one value per brain voxel, innovations of variance 1.
  const std::vector<double>& next();

  // The reference's course at the time point that next() returned.
  [[nodiscard]] double reference() const { return reference_; }

 private:
  void stepVoxels(double lastReference, double innovation);
  double nextVoxel(std::size_t voxel, double lastReference, double innovation);
  void centreReferenceVoxels();
  void updateMeans();

  const InfluenceModel* model_;
  std::vector<std::int32_t> labels_;
  NoiseStream& random_;
  std::vector<double> values_;
  std::vector<double> regionNoise_, means_;  // per region
  std::vector<std::size_t> regionVoxels_;
  double reference_ = 0;
};

}  // namespace simulation

#endif
