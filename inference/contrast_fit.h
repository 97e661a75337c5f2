// A contrast's estimate and t at one place.
#ifndef TAVMAP_INFERENCE_CONTRAST_FIT_H
#define TAVMAP_INFERENCE_CONTRAST_FIT_H

#include <optional>
#include <vector>

#include "inference/contrast_split.h"

namespace inference {

struct ContrastFit {
  double effect, t;
  double length;  // of the values without the nuisances' part
};

// values: per row of the model; those that the split leaves out become 0, the others lose the nuisances'
// part. Nothing when they do not vary about the model.
[[nodiscard]] std::optional<ContrastFit> fitContrast(const ContrastSplit& split, std::vector<double>& values);

}  // namespace inference

#endif
