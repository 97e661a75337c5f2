// Numbers and names within warnings.
#ifndef TAVMAP_SUITABILITY_WORDING_H
#define TAVMAP_SUITABILITY_WORDING_H

#include <string>
#include <string_view>
#include <vector>

namespace suitability {

[[nodiscard]] std::string number(double value);   // two significant digits
[[nodiscard]] std::string percent(double share);  // 0 ... 1, "37 %"
// "3", "3, 8, 9", and "3, 8, ... (12 in all)" beyond `most`; at least one.
[[nodiscard]] std::string list(const std::vector<int>& numbers, std::size_t most);
[[nodiscard]] std::string quoted(std::string_view kind, std::string_view name);  // "run 'a'"
[[nodiscard]] std::string counted(int count, std::string_view noun);             // "1 volume", "2 volumes"

}  // namespace suitability

#endif
