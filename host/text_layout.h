// Lays out plain text for a terminal.
#ifndef TAVMAP_HOST_TEXT_LAYOUT_H
#define TAVMAP_HOST_TEXT_LAYOUT_H

#include <string>
#include <string_view>

namespace host {

// `text` with lines broken at blanks so that none is wider than `columns` characters (UTF-8 is
// counted by code points). A word that is wider keeps a line to itself, unbroken: it is a path.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t columns);

}  // namespace host

#endif
