// The tail of a null that has few values, smoothed.
#ifndef TAVMAP_INFERENCE_TAIL_H
#define TAVMAP_INFERENCE_TAIL_H

#include <optional>
#include <vector>

namespace inference {

// A generalized Pareto distribution above a quarter of the values, by its moments (Knijnenburg et al. 2009,
// doi:10.1093/bioinformatics/btp211; Winkler et al. 2016, NeuroImage 141,
// doi:10.1016/j.neuroimage.2016.05.068).
struct ParetoTail {
  double begin;  // the tail is above it
  double share;  // of the values that are
  double shape, scale;
  double leastP;  // a hundredth of what one value among all counts for: below that nothing is claimed

  [[nodiscard]] double p(double value) const;    // of values above `begin`
  [[nodiscard]] double valueAt(double p) const;  // p at most `share` and at least leastP
};

// Nothing when fewer than 20 values or too alike ones are above.
[[nodiscard]] std::optional<ParetoTail> fitTail(std::vector<float> values);

}  // namespace inference

#endif
