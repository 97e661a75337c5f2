#include "tests/kernel/cases.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/support/autoregressive.h"

namespace cases {
namespace {

using tav::kernel::Element;

std::vector<double> autoregression(std::mt19937& random, int n, double coefficient) {
  return autoregressive(static_cast<std::size_t>(n), coefficient, normalFrom(random));
}

std::vector<float> asData(const std::vector<double>& x, double mean, double sd, double drift,
                          Element element) {
  std::vector<float> data(x.size());
  for (std::size_t t = 0; t < x.size(); ++t) {
    const double value = mean + sd * x[t] + drift * static_cast<double>(t) / static_cast<double>(x.size());
    data[t] =
        static_cast<float>(element == Element::kUint16 ? std::clamp(std::round(value), 0.0, 65535.0) : value);
  }
  return data;
}

std::vector<float> makeVoxel(std::mt19937& random, const std::vector<double>& reference, std::size_t index,
                             Element element) {
  std::vector<double> y = autoregression(random, static_cast<int>(reference.size()), 0.4);
  for (std::size_t t = 1; t + 1 < y.size(); ++t) {
    if (index % 3 == 1) y[t] += 0.5 * reference[t - 1];
    if (index % 3 == 2) y[t] += 0.5 * reference[t + 1];
  }
  std::uniform_real_distribution<double> mean(8000.0, 12000.0), sd(80.0, 200.0), drift(-300.0, 300.0);
  return asData(y, mean(random), sd(random), drift(random), element);
}

Set makeSet(const Shape& shape, const std::vector<int>& lengths, std::mt19937& random) {
  Set set;
  set.element = shape.element;
  int volume = 3;
  for (int length : lengths) {
    set.intervals.push_back({volume, length});
    volume += length + 2;
  }
  set.nrOfVolumes = volume;
  const auto reference = autoregression(random, volume, 0.5);
  set.reference = asData(reference, 10000.0, 100.0, 100.0, Element::kFloat);
  for (int s = 0; s < shape.nrOfSurrogates; ++s) {
    set.surrogates.push_back(asData(autoregression(random, volume, 0.5), 0.0, 100.0, 0.0, Element::kFloat));
  }
  for (std::size_t v = 0; v < shape.nrOfVoxels; ++v)
    set.voxels.push_back(makeVoxel(random, reference, v, shape.element));
  return set;
}

// The voxels of one set as the file would hold them, with the slack that kernels may read.
class Courses {
 public:
  explicit Courses(const Set& set)
      : size_(set.element == Element::kUint16 ? 2 : 4),
        stride_(static_cast<std::size_t>(set.nrOfVolumes) * size_) {
    bytes_.resize(stride_ * set.voxels.size() + tav::kernel::kReadSlack);
    for (std::size_t v = 0; v < set.voxels.size(); ++v) {
      for (std::size_t t = 0; t < set.voxels[v].size(); ++t) put(v * stride_ + t * size_, set.voxels[v][t]);
    }
  }
  [[nodiscard]] const void* at(std::size_t voxel) const { return bytes_.data() + voxel * stride_; }

 private:
  void put(std::size_t offset, float value) {
    const auto whole = size_ == 2 ? static_cast<std::uint16_t>(value) : std::uint16_t{0};
    if (size_ == 2) {
      std::memcpy(bytes_.data() + offset, &whole, 2);
    } else {
      std::memcpy(bytes_.data() + offset, &value, 4);
    }
  }

  std::size_t size_, stride_;
  std::vector<unsigned char> bytes_;
};

tav::kernel::PlanSpec specOf(const Condition& condition, std::vector<std::vector<float>>& rows) {
  tav::kernel::PlanSpec spec{condition.order,
                             condition.draws,
                             condition.leastSquares,
                             static_cast<int>(condition.sets.front().surrogates.size()),
                             {}};
  for (const Set& set : condition.sets) {
    auto& flat = rows.emplace_back();
    for (const auto& row : set.surrogates) flat.insert(flat.end(), row.begin(), row.end());
    rows.emplace_back(set.reference);
  }
  for (std::size_t s = 0; s < condition.sets.size(); ++s) {
    const Set& set = condition.sets[s];
    spec.sets.push_back(
        {set.element,
         {{rows[2 * s + 1].data(), rows[2 * s].data(), static_cast<std::size_t>(set.nrOfVolumes)}},
         set.intervals});
  }
  return spec;
}

// From [voxel][cell] to [cell][voxel], `stride` values a cell.
std::vector<std::uint32_t> drawnByCell(const Condition& condition, std::size_t stride) {
  const std::size_t cells = condition.drawsPerVoxel();
  std::vector<std::uint32_t> drawn(cells * stride);
  for (std::size_t i = 0; i < condition.drawn.size(); ++i)
    drawn[i % cells * stride + i / cells] = condition.drawn[i];
  return drawn;
}

}  // namespace

std::size_t Condition::nrOfIntervals() const {
  std::size_t n = 0;
  for (const Set& set : sets) n += set.intervals.size();
  return n;
}

std::size_t Condition::drawsPerVoxel() const {
  return (leastSquares ? 1 : nrOfIntervals()) * static_cast<std::size_t>(draws);
}

Condition makeCondition(const Shape& shape, std::uint32_t seed) {
  std::mt19937 random(seed);
  Condition condition{shape.order, shape.draws, shape.leastSquares, {}, {}};
  for (const auto& lengths : shape.lengths) condition.sets.push_back(makeSet(shape, lengths, random));
  std::uniform_int_distribution<std::uint32_t> draw(0, static_cast<std::uint32_t>(shape.nrOfSurrogates - 1));
  condition.drawn.resize(shape.nrOfVoxels * condition.drawsPerVoxel());
  for (auto& index : condition.drawn) index = draw(random);
  return condition;
}

Results run(const tav::kernel::Kernel& kernel, const Condition& condition, std::size_t batchSize) {
  std::vector<std::vector<float>> rows;
  rows.reserve(2 * condition.sets.size());
  const tav::kernel::Plan plan(specOf(condition, rows), kernel);
  const tav::kernel::Workspace work(plan.view(), kernel.width);

  std::vector<Courses> courses(condition.sets.begin(), condition.sets.end());
  std::vector<const void*> pointers;
  for (std::size_t v = 0; v < condition.nrOfVoxels(); ++v) {
    for (const Courses& set : courses) pointers.push_back(set.at(v));
  }
  const std::size_t n = condition.nrOfVoxels(), draws = static_cast<std::size_t>(condition.draws);
  Results results;
  results.nullStride = n + tav::kernel::kMaxLanes;
  for (auto& plane : results.measures) plane.resize(n + tav::kernel::kMaxLanes);
  for (auto& plane : results.nulls) plane.resize(results.nullStride * draws);
  results.verdicts.resize(n + tav::kernel::kMaxLanes);
  results.nullVerdicts.resize(results.nullStride * draws);
  const std::vector<std::uint32_t> drawn = drawnByCell(condition, results.nullStride);
  for (std::size_t first = 0; first < n; first += batchSize) {
    const tav::kernel::ReferenceBatch reference{
        drawn.data() + first,
        {results.measures[0].data() + first, results.measures[1].data() + first,
         results.measures[2].data() + first},
        results.verdicts.data() + first,
        {results.nulls[0].data() + first, results.nulls[1].data() + first, results.nulls[2].data() + first},
        results.nullVerdicts.data() + first,
        results.nullStride};
    const tav::kernel::BatchView batch{std::min(batchSize, n - first),
                                       pointers.data() + first * condition.sets.size(), &reference};
    tav::kernel::run(kernel, plan.view(), batch, work.view());
  }
  return results;
}

oracle::Answer expected(const Condition& condition, std::size_t voxel, int draw) {
  std::vector<oracle::Segment> segments;
  const std::size_t first = voxel * condition.drawsPerVoxel() + static_cast<std::size_t>(std::max(draw, 0));
  std::size_t cell = 0;
  for (const Set& set : condition.sets) {
    for (const auto& interval : set.intervals) {
      const std::size_t chosen = condition.drawn[first + cell * static_cast<std::size_t>(condition.draws)];
      if (!condition.leastSquares) ++cell;
      const std::vector<float>& x = draw < 0 ? set.reference : set.surrogates[chosen];
      const std::vector<float>& y = set.voxels[voxel];
      oracle::Segment segment;
      for (int t = interval.first; t < interval.first + interval.length; ++t) {
        segment.x.push_back(static_cast<double>(x[static_cast<std::size_t>(t)]));
        segment.y.push_back(static_cast<double>(y[static_cast<std::size_t>(t)]));
      }
      segments.push_back(std::move(segment));
    }
  }
  return oracle::geweke(segments, condition.order, condition.leastSquares);
}

}  // namespace cases
