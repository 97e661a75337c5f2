#include "suitability/wording.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace suitability {

std::string number(double value) {
  std::ostringstream text;
  text.precision(2);
  // Streams write 100 with two digits as 1e+02.
  if (std::abs(value) >= 10 && std::abs(value) < 1e6)
    text << std::lround(value);
  else
    text << value;
  return text.str();
}

std::string percent(double share) {
  return std::to_string(std::lround(100 * share)) + " %";
}

std::string list(const std::vector<int>& numbers, std::size_t most) {
  std::string text;
  for (std::size_t i = 0; i < std::min(most, numbers.size()); ++i)
    text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
  if (numbers.size() > most) text += fmt::format(", ... ({} in all)", numbers.size());
  return text;
}

std::string quoted(std::string_view kind, std::string_view name) {
  return fmt::format("{} '{}'", kind, name);
}

std::string counted(int count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace suitability
