// Suggestions for misspelt names.
#ifndef TAVMAP_REQUEST_NEAREST_NAME_H
#define TAVMAP_REQUEST_NEAREST_NAME_H

#include <string>
#include <string_view>
#include <vector>

namespace study {

// Number of single-character insertions, deletions, replacements and swaps of neighbours that turn
// a into b, letters compared without case (Damerau 1964, the restricted form). O(|a| |b|).
[[nodiscard]] int editDistance(std::string_view a, std::string_view b);

// The known name with the smallest distance to name, the first of equals; empty when known is
// empty or when the nearest one differs in more than half of its letters.
[[nodiscard]] std::string nearestName(std::string_view name, const std::vector<std::string>& known);

// The end of an error message: "; did you mean 'x'?", or, when nothing is near, "; known are a, b"
// with at most twelve names and an ellipsis.
[[nodiscard]] std::string suggestion(std::string_view name, const std::vector<std::string>& known);

}  // namespace study

#endif
