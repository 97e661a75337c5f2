// The pieces of a text.
#ifndef TAVMAP_REQUEST_SPLIT_H
#define TAVMAP_REQUEST_SPLIT_H

#include <string>
#include <string_view>
#include <vector>

namespace study {

// What stands between the separators, empty pieces too: always one more than there are separators.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);

}  // namespace study

#endif
