// HTML and SVG as text. What comes from users' files goes through text() or the values of attributes, and so
// never becomes markup.
#ifndef TAVMAP_REPORT_HTML_H
#define TAVMAP_REPORT_HTML_H

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace report {

// With entities for what HTML takes for markup; control characters, which HTML does not allow, become U+FFFD,
// and so do bytes that are no UTF-8.
[[nodiscard]] std::string text(std::string_view utf8);

// A name from a user's file inside a sentence of ours: letters that run from right to left do not turn the
// rest around.
[[nodiscard]] std::string name(std::string_view utf8);

// Names and values; values as they are, without entities. A value that is only a flag is empty.
using Attributes = std::initializer_list<std::pair<std::string_view, std::string>>;

// <tag name="value">content</tag>; content is markup.
[[nodiscard]] std::string element(std::string_view tag, Attributes attributes, std::string_view content);
[[nodiscard]] std::string element(std::string_view tag, std::string_view content);
// An element that has no content: <img>, <path/>.
[[nodiscard]] std::string single(std::string_view tag, Attributes attributes);

}  // namespace report

#endif
