// Some places of a group, as the checks of its assumptions look at them.
#ifndef TAVMAP_INFERENCE_COMPLETE_SAMPLE_H
#define TAVMAP_INFERENCE_COMPLETE_SAMPLE_H

#include <Eigen/Core>

#include "inference/model.h"

namespace inference {

// Rows x places: at most 2,000 places, evenly taken, of those where all rows have a value; none, when there
// is none.
[[nodiscard]] Eigen::MatrixXf completeSample(const Values& values);

}  // namespace inference

#endif
