#include "simulation/course_simulator.h"

#include <cmath>
#include <utility>

namespace simulation {
namespace {

constexpr int kRunIn = 64;  // the slowest course, 0.5^64, has forgotten its start to rounding
constexpr double kReferenceVoxelNoise = 0.5;

std::size_t regionOf(std::int32_t label) {
  return static_cast<std::size_t>(label - 1);
}

}  // namespace

CourseSimulator::CourseSimulator(const InfluenceModel& model, std::vector<std::int32_t> labels,
                                 NoiseStream& random)
    : model_(&model),
      labels_(std::move(labels)),
      random_(random),
      values_(labels_.size(), 0),
      regionNoise_(model.regions.size(), 0),
      means_(model.regions.size(), 0),
      regionVoxels_(model.regions.size(), 0) {
  for (const std::int32_t label : labels_)
    if (label > 0) ++regionVoxels_[regionOf(label)];
  for (int step = 0; step < kRunIn; ++step) next();
}

const std::vector<double>& CourseSimulator::next() {
  const double lastReference = reference_;
  const double innovation = random_.normal();
  reference_ = model_->reference().autoregression * lastReference + innovation;
  for (std::size_t k = 1; k < means_.size(); ++k) reference_ += model_->regions[k].drive * means_[k];
  for (double& noise : regionNoise_) noise = random_.normal();
  stepVoxels(lastReference, innovation);
  centreReferenceVoxels();
  updateMeans();
  return values_;
}

void CourseSimulator::stepVoxels(double lastReference, double innovation) {
  for (std::size_t v = 0; v < values_.size(); ++v) values_[v] = nextVoxel(v, lastReference, innovation);
}

double CourseSimulator::nextVoxel(std::size_t voxel, double lastReference, double innovation) {
  const double own = random_.normal();
  const std::int32_t label = labels_[voxel];
  if (label == 0) return kNoiseAutoregression * values_[voxel] + own;
  const RegionModel& region = model_->regions[regionOf(label)];
  if (region.kind == Kind::kReference) return kReferenceVoxelNoise * own;
  const double unshared =
      std::sqrt(region.coherence) * regionNoise_[regionOf(label)] + std::sqrt(1 - region.coherence) * own;
  return region.autoregression * values_[voxel] + region.follow * lastReference + region.share * innovation +
         std::sqrt(1 - region.share * region.share) * unshared;
}

void CourseSimulator::centreReferenceVoxels() {
  double sum = 0;
  for (std::size_t v = 0; v < values_.size(); ++v)
    if (labels_[v] == 1) sum += values_[v];
  const double shift = reference_ - sum / static_cast<double>(regionVoxels_[0]);
  for (std::size_t v = 0; v < values_.size(); ++v)
    if (labels_[v] == 1) values_[v] += shift;
}

void CourseSimulator::updateMeans() {
  for (double& mean : means_) mean = 0;
  for (std::size_t v = 0; v < values_.size(); ++v)
    if (labels_[v] > 0) means_[regionOf(labels_[v])] += values_[v];
  for (std::size_t k = 0; k < means_.size(); ++k) means_[k] /= static_cast<double>(regionVoxels_[k]);
}

}  // namespace simulation
