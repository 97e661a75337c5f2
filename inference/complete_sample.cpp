#include "inference/complete_sample.h"

#include <cstdint>
#include <vector>

#include "inference/place_groups.h"

namespace inference {

Eigen::MatrixXf completeSample(const Values& values) {
  constexpr std::size_t kMostPlaces = 2000;
  const auto groups = groupPlaces(values, countRows(values), static_cast<int>(values.rows));
  const std::vector<std::int32_t> places = groups.empty() ? std::vector<std::int32_t>{} : groups[0].places;
  const std::size_t step = places.size() / kMostPlaces + 1;
  Eigen::MatrixXf taken(values.rows, (places.size() + step - 1) / step);
  for (Eigen::Index j = 0; j < taken.cols(); ++j)
    for (Eigen::Index i = 0; i < taken.rows(); ++i)
      taken(i, j) = values.of(static_cast<std::size_t>(i),
                              static_cast<std::size_t>(places[static_cast<std::size_t>(j) * step]));
  return taken;
}

}  // namespace inference
