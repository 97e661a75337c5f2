// Null values of all edges, counted as they come.
#ifndef TAVMAP_CONNECTOME_NULL_TALLY_H
#define TAVMAP_CONNECTOME_NULL_TALLY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "connectome/edge_shares.h"

namespace connectome {

// Magnitudes in bins of equal ratio, a thousandth each: a value counts as reaching whatever lies in its bin.
class MagnitudeCounts {
 public:
  MagnitudeCounts();
  void add(float magnitude) { ++bins_[binOf(magnitude)]; }
  MagnitudeCounts& operator+=(const MagnitudeCounts& other);
  // To be called once, before atLeast(): from then on nothing may be added.
  void close();
  [[nodiscard]] std::uint64_t total() const { return bins_.front(); }
  [[nodiscard]] std::uint64_t atLeast(float magnitude) const { return bins_[binOf(magnitude)]; }

 private:
  [[nodiscard]] static std::size_t binOf(float magnitude);
  std::vector<std::uint64_t> bins_;  // once closed: values in it and above
};

// What comes of one node's surrogates against all other nodes. Each value is divided by the mean of the other
// draws of its pair and measure: edges have the scale of their own null values and share one shape of them.
// (With itself in its mean a null value would come out smaller than an observed one, the more so the larger
// it is.)
class NullTally {
 public:
  NullTally(std::size_t nodes, std::size_t draws);

  // Shares of all draws with all nodes, draw by draw, `stride` values each; NaN is left out.
  struct DrawnShares {
    const float *toOthers, *fromOthers, *instantaneous;
    std::size_t stride;
  };
  // isDefined: per node. Each node once.
  void add(std::size_t node, const DrawnShares& shares, const std::vector<char>& isDefined);
  NullTally& operator+=(const NullTally& other);

  [[nodiscard]] const MagnitudeCounts& counts(Measure measure) const { return counts_[index(measure)]; }
  [[nodiscard]] MagnitudeCounts& counts(Measure measure) { return counts_[index(measure)]; }
  // Of each draw the largest value of all edges, twice: every pair stands once in each half, with the
  // surrogates of one end in the first and of the other in the second.
  [[nodiscard]] const std::vector<float>& maxima(Measure measure) const { return maxima_[index(measure)]; }
  // Mean null value of an edge, over the surrogates of both ends; NaN where one has none.
  [[nodiscard]] double scale(Measure measure, std::size_t row, std::size_t column) const;

 private:
  [[nodiscard]] static std::size_t index(Measure measure) { return static_cast<std::size_t>(measure); }
  // Toward the others, from them, instantaneous, net.
  static constexpr std::size_t kKinds = 4;
  void takeMeans(std::size_t node, const DrawnShares& shares, const std::vector<char>& isDefined);
  void takeValues(std::size_t node, const DrawnShares& shares);
  void count(std::size_t kind, float value, std::size_t half, std::size_t draw);

  std::size_t nodes_, draws_;
  std::array<MagnitudeCounts, kMeasures.size()> counts_;
  std::array<std::vector<float>, kMeasures.size()> maxima_;
  std::array<EdgeMatrix, kKinds> means_;  // row: the node whose surrogates these are
  std::vector<float> sums_;               // over one node's draws, [kind][other]; 0: none
  std::vector<float> others_;             // draws but one, per other node
};

}  // namespace connectome

#endif
