// Family-wise results in words, for terminals and logs.
#ifndef TAVMAP_RESULTS_FAMILY_WISE_WORDS_H
#define TAVMAP_RESULTS_FAMILY_WISE_WORDS_H

#include <string>

#include "results/family_wise_result.h"

namespace study {

// "family-wise p of 0.05 or less: 12 voxels; 2 clusters of 340 voxels", "none" when there are neither. The
// result must not be empty.
[[nodiscard]] std::string familyWiseText(const FamilyWiseResult& result);

}  // namespace study

#endif
