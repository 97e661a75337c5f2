#include "request/split.h"

namespace study {

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
    pieces.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  pieces.emplace_back(text);
  return pieces;
}

}  // namespace study
