#include "request/nearest_name.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>

namespace study {
namespace {

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

using Row = std::vector<int>;

// The next row of the distance table from the two before it.
Row nextRow(const Row& twoAbove, const Row& above, std::string_view a, std::size_t i, std::string_view b) {
  Row row(b.size() + 1);
  row[0] = static_cast<int>(i);
  for (std::size_t j = 1; j <= b.size(); ++j) {
    const bool same = lower(a[i - 1]) == lower(b[j - 1]);
    row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
    const bool swapped =
        i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]);
    if (swapped) row[j] = std::min(row[j], twoAbove[j - 2] + 1);
  }
  return row;
}

}  // namespace

int editDistance(std::string_view a, std::string_view b) {
  Row twoAbove, above(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) above[j] = static_cast<int>(j);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    Row row = nextRow(twoAbove, above, a, i, b);
    twoAbove = std::move(above);
    above = std::move(row);
  }
  return above[b.size()];
}

std::string nearestName(std::string_view name, const std::vector<std::string>& known) {
  std::string best;
  int bestDistance = std::numeric_limits<int>::max();
  for (const std::string& candidate : known) {
    const int distance = editDistance(name, candidate);
    if (distance < bestDistance) best = candidate, bestDistance = distance;
  }
  const bool near = !best.empty() && 2 * bestDistance <= static_cast<int>(std::max(best.size(), name.size()));
  return near ? best : std::string();
}

std::string suggestion(std::string_view name, const std::vector<std::string>& known) {
  const std::string nearest = nearestName(name, known);
  if (!nearest.empty()) return fmt::format("; did you mean '{}'?", nearest);
  if (known.empty()) return "";
  constexpr std::size_t kMostNames = 12;
  std::string text = "; known are ";
  for (std::size_t i = 0; i < std::min(known.size(), kMostNames); ++i) text += (i > 0 ? ", " : "") + known[i];
  return text + (known.size() > kMostNames ? ", ..." : "");
}

}  // namespace study
