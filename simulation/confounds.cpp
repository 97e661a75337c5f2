#include "simulation/confounds.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace simulation {
namespace {

using Series = std::vector<double>;

constexpr std::array<const char*, 6> kMotionNames = {"trans_x", "trans_y", "trans_z",
                                                     "rot_x",   "rot_y",   "rot_z"};
constexpr std::array<double, 2> kSaturation = {1.35, 1.08};
constexpr int kComponents = 6;
constexpr double kHeadRadiusMm = 50;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

Series drawMotion(int volumes, double step, NoiseStream& random) {
  Series series;
  double position = 0;
  for (int t = 0; t < volumes; ++t) series.push_back(position = 0.98 * position + step * random.normal());
  return series;
}

// For one volume the head is elsewhere: two large displacements, there and back.
void addJerk(Series& transZ, NoiseStream& random) {
  const auto volume = static_cast<std::size_t>(random.between(0.4, 0.9) * static_cast<double>(transZ.size()));
  transZ[volume] += 0.9;
}

Series derivative(const Series& series) {
  Series result{kNone};
  for (std::size_t t = 1; t < series.size(); ++t) result.push_back(series[t] - series[t - 1]);
  return result;
}

Series squared(Series series) {
  for (double& value : series) value *= value;
  return series;
}

void appendExpansions(std::vector<Confound>& table, const char* name, const Series& series) {
  const std::string stem = name;
  table.push_back({stem, series});
  table.push_back({stem + "_derivative1", derivative(series)});
  table.push_back({stem + "_power2", squared(series)});
  table.push_back({stem + "_derivative1_power2", squared(derivative(series))});
}

Series framewiseDisplacement(const std::array<Series, 6>& motion) {
  Series displacement(motion[0].size(), 0);
  displacement[0] = kNone;
  for (std::size_t axis = 0; axis < motion.size(); ++axis)
    for (std::size_t t = 1; t < displacement.size(); ++t)
      displacement[t] += (axis < 3 ? 1 : kHeadRadiusMm) * std::fabs(motion[axis][t] - motion[axis][t - 1]);
  return displacement;
}

Series drawComponent(int volumes, NoiseStream& random) {
  Series series;
  double value = 0;
  for (int t = 0; t < volumes; ++t) series.push_back(value = 0.7 * value + 0.7 * random.normal());
  return series;
}

Series cosine(int volumes) {
  Series series;
  for (int t = 0; t < volumes; ++t) series.push_back(std::cos(std::numbers::pi * (t + 0.5) / volumes));
  return series;
}

Series indicator(int volumes, int volume) {
  Series series(static_cast<std::size_t>(volumes), 0);
  series[static_cast<std::size_t>(volume)] = 1;
  return series;
}

const Series& seriesOf(const std::vector<Confound>& confounds, const std::string& name) {
  for (const Confound& confound : confounds)
    if (confound.name == name) return confound.values;
  throw std::logic_error("no confound " + name);
}

std::string cell(double value) {
  if (std::isnan(value)) return "n/a";
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.8g", value);
  return text.data();
}

}  // namespace

std::vector<Confound> drawConfounds(int volumes, NoiseStream& random, double factor) {
  std::array<Series, 6> motion;
  for (std::size_t axis = 0; axis < motion.size(); ++axis)
    motion[axis] = drawMotion(volumes, factor * (axis < 3 ? 0.02 : 0.0003), random);
  addJerk(motion[2], random);
  std::vector<Confound> table = {{"framewise_displacement", framewiseDisplacement(motion)}};
  for (std::size_t axis = 0; axis < motion.size(); ++axis)
    appendExpansions(table, kMotionNames[axis], motion[axis]);
  for (int component = 0; component < kComponents; ++component)
    table.push_back({"a_comp_cor_0" + std::to_string(component), drawComponent(volumes, random)});
  table.push_back({"cosine00", cosine(volumes)});
  for (int volume = 0; volume < kUnsteadyVolumes; ++volume)
    table.push_back({"non_steady_state_outlier0" + std::to_string(volume), indicator(volumes, volume)});
  return table;
}

Artefacts artefactsOf(const std::vector<Confound>& confounds) {
  constexpr double kUnitsPerMm = 5;  // of a course: the largest drift of the head matters like its noise
  Artefacts artefacts;
  artefacts.courses = {seriesOf(confounds, "trans_y"), seriesOf(confounds, "a_comp_cor_00")};
  for (double& value : artefacts.courses[0]) value *= kUnitsPerMm;
  artefacts.saturation.assign(kSaturation.begin(), kSaturation.end());
  return artefacts;
}

std::string confoundsTable(const std::vector<Confound>& confounds) {
  std::string text;
  for (const Confound& confound : confounds) text += (text.empty() ? "" : "\t") + confound.name;
  text += '\n';
  for (std::size_t t = 0; t < confounds.front().values.size(); ++t)
    for (std::size_t i = 0; i < confounds.size(); ++i)
      text += cell(confounds[i].values[t]) + (i + 1 < confounds.size() ? '\t' : '\n');
  return text;
}

}  // namespace simulation
