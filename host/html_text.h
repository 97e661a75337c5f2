// Plug-in texts as plain text. Plug-ins write HTML fragments (<b>, <i>, <br>, links) into dialogs
// and into the log; front ends without a renderer show them through these two functions.
//
// Only the tags of such fragments are understood. Any other '<' is text and stays, so that
// "a < b" and a name like "<none>" survive.
#ifndef TAVMAP_HOST_HTML_TEXT_H
#define TAVMAP_HOST_HTML_TEXT_H

#include <string>
#include <string_view>

namespace host {

// A dialog's text: white space collapses as in a browser, <br> and block tags start a line, a link
// is followed by its target in parentheses. No white space at either end.
[[nodiscard]] std::string dialogText(std::string_view html);

// A log line's text: markup goes, tabs, blanks and line ends stay as they are.
[[nodiscard]] std::string logText(std::string_view html);

}  // namespace host

#endif
