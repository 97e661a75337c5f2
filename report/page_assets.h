// Style and script of pages, as web/ makes them; put into the program when it is built.
#ifndef TAVMAP_REPORT_PAGE_ASSETS_H
#define TAVMAP_REPORT_PAGE_ASSETS_H

#include <string_view>

namespace report {

[[nodiscard]] std::string_view pageStyle();
[[nodiscard]] std::string_view pageScript();  // empty: it was built without Node, and pages do without

}  // namespace report

#endif
