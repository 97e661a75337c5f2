// Student's t and the normal distribution.
#ifndef TAVMAP_INFERENCE_T_DISTRIBUTION_H
#define TAVMAP_INFERENCE_T_DISTRIBUTION_H

namespace inference {

// The normal deviate with the same probability beyond it as t with `freedom` degrees; odd in t. Beyond
// probabilities of 1e-300 it no longer grows. freedom is at least 1.
[[nodiscard]] double zOfT(double t, int freedom);
[[nodiscard]] double tOfZ(double z, int freedom);

// t of the correlation of residuals with the contrast's direction, and back.
[[nodiscard]] double tOfCorrelation(double r, int freedom);
[[nodiscard]] double correlationOfT(double t, int freedom);

}  // namespace inference

#endif
