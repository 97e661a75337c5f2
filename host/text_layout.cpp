#include "host/text_layout.h"

namespace host {
namespace {

std::size_t width(std::string_view text) {
  std::size_t count = 0;
  for (char c : text)
    if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) ++count;
  return count;
}

std::string wrappedLine(std::string_view line, std::size_t columns) {
  std::string out;
  std::size_t used = 0;
  while (!line.empty()) {
    const std::string_view word = line.substr(0, line.find(' '));
    if (used > 0 && used + 1 + width(word) > columns) {
      out += '\n';
      used = 0;
    } else if (!out.empty()) {
      out += ' ';
      ++used;
    }
    out += word;
    used += width(word);
    line.remove_prefix(word.size() < line.size() ? word.size() + 1 : word.size());
  }
  return out;
}

}  // namespace

std::string wrapped(std::string_view text, std::size_t columns) {
  std::string out;
  for (;;) {
    const std::size_t end = text.find('\n');
    out += wrappedLine(text.substr(0, end), columns);
    if (end == std::string_view::npos) return out;
    out += '\n';
    text.remove_prefix(end + 1);
  }
}

}  // namespace host
