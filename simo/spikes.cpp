#include "simo/spikes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace simo {
namespace {

// What counts as a spike, in standard deviations of the residuals: one in 500 million of Gaussian ones.
constexpr double kSpike = 6;

int lengthOf(const std::vector<Stretch>& stretches) {
  int length = 0;
  for (const Stretch& stretch : stretches) length += stretch.end - stretch.first;
  return length;
}

// The standard deviation of Gaussian values, from the median of their magnitudes, which spikes hardly move.
double robustDeviation(std::vector<double> values) {
  if (values.empty()) return 0;
  for (double& value : values) value = std::abs(value);
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return 1.4826 * *middle;
}

// The series with its spikes replaced by the line between their neighbours in the stretch. spikes: one flag
// per value of the stretches.
std::vector<double> withoutSpikes(const std::vector<double>& series, const std::vector<Stretch>& stretches,
                                  const std::vector<bool>& spikes) {
  std::vector<double> clean = series;
  std::size_t offset = 0;  // of the stretch's first flag
  for (const Stretch& stretch : stretches) {
    const auto flag = [&](int t) { return spikes[offset + static_cast<std::size_t>(t - stretch.first)]; };
    for (int t = stretch.first; t < stretch.end; ++t) {
      if (!flag(t)) continue;
      int before = t - 1, behind = t + 1;
      while (before >= stretch.first && flag(before)) --before;
      while (behind < stretch.end && flag(behind)) ++behind;
      const bool hasBefore = before >= stretch.first, hasBehind = behind < stretch.end;
      const double left = hasBefore ? series[static_cast<std::size_t>(before)] : 0;
      const double right = hasBehind ? series[static_cast<std::size_t>(behind)] : 0;
      const double share = static_cast<double>(t - before) / (behind - before);
      clean[static_cast<std::size_t>(t)] = (1 - share) * left + share * right;
    }
    offset += static_cast<std::size_t>(stretch.end - stretch.first);
  }
  return clean;
}

// What the model leaves of the spikes, added to the residuals of the series without them.
void addSpikes(const std::vector<double>& series, const std::vector<double>& clean,
               const std::vector<Stretch>& stretches, BurgModel& model) {
  auto residual = model.residuals.begin();
  const auto spike = [&](int t) {
    return series[static_cast<std::size_t>(t)] - clean[static_cast<std::size_t>(t)];
  };
  for (const Stretch& stretch : stretches) {
    for (int t = stretch.first; t < stretch.end; ++t, ++residual) {
      *residual += spike(t);
      for (int k = 1; k <= model.order() && t - k >= stretch.first; ++k)
        *residual -= model.coefficients[static_cast<std::size_t>(k) - 1] * spike(t - k);
    }
  }
}

}  // namespace

std::vector<bool> spikesAmong(const std::vector<double>& residuals) {
  const double limit = kSpike * robustDeviation(residuals);
  std::vector<bool> spikes;
  for (const double residual : residuals) spikes.push_back(std::abs(residual) > limit);
  return spikes;
}

BurgModel fitBetweenSpikes(const std::vector<double>& series, const std::vector<Stretch>& stretches) {
  const int most = mostBurgOrder(lengthOf(stretches));
  BurgModel model = fitBurg(series, stretches, most);
  const std::vector<bool> spikes = spikesAmong(model.residuals);
  if (std::find(spikes.begin(), spikes.end(), true) == spikes.end()) return model;
  const std::vector<double> clean = withoutSpikes(series, stretches, spikes);
  model = fitBurg(clean, stretches, most);
  addSpikes(series, clean, stretches, model);
  return model;
}

}  // namespace simo
