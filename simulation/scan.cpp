#include "simulation/scan.h"

namespace simulation {
namespace {

constexpr double kLargestDrift = 0.01;
constexpr double kBackground = 40;

std::vector<double> drawn(std::size_t count, double low, double high, NoiseStream& random) {
  std::vector<double> values(count);
  for (double& value : values) value = random.between(low, high);
  return values;
}

std::vector<std::int32_t> labelsOfBrain(const Head& head) {
  std::vector<std::int32_t> labels;
  labels.reserve(head.brain.size());
  for (const std::size_t index : head.brain) labels.push_back(head.labels[index]);
  return labels;
}

double saturationAt(const Artefacts& artefacts, std::size_t volume) {
  return volume < artefacts.saturation.size() ? artefacts.saturation[volume] : 1;
}

}  // namespace

Scan::Scan(const Head& head, const InfluenceModel& model, const Artefacts& artefacts, int volumes,
           NoiseStream& random)
    : head_(head),
      artefacts_(artefacts),
      random_(random),
      volumes_(volumes),
      slopes_(drawn(head.brain.size(), -kLargestDrift, kLargestDrift, random)),
      weights_(drawn(head.brain.size() * artefacts.courses.size(), 0.5, 1.5, random)),
      courses_(model, labelsOfBrain(head), random),
      values_(head.grid.voxels()) {}

double Scan::artefactOf(std::size_t voxel) const {
  double sum = 0;
  for (std::size_t i = 0; i < artefacts_.courses.size(); ++i)
    sum += weights_[voxel * artefacts_.courses.size() + i] *
           artefacts_.courses[i][static_cast<std::size_t>(volume_)];
  return sum;
}

const std::vector<float>& Scan::nextVolume() {
  const std::vector<double>& courses = courses_.next();
  const double time = static_cast<double>(volume_) / (volumes_ - 1) - 0.5;
  const double saturation = saturationAt(artefacts_, static_cast<std::size_t>(volume_));
  for (float& value : values_) value = static_cast<float>(random_.between(0, kBackground));
  for (std::size_t v = 0; v < head_.brain.size(); ++v) {
    const double base = static_cast<double>(head_.base[v]) * (1 + slopes_[v] * time);
    values_[head_.brain[v]] =
        static_cast<float>(base * saturation + kAmplitude * (courses[v] + artefactOf(v)));
  }
  ++volume_;
  return values_;
}

}  // namespace simulation
