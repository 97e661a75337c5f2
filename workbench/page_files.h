// The files of the page, as web/ makes them; put into the program when it is built.
#ifndef TAVMAP_WORKBENCH_PAGE_FILES_H
#define TAVMAP_WORKBENCH_PAGE_FILES_H

#include <span>
#include <string_view>

namespace workbench {

struct PageFile {
  std::string_view name;  // of the address, without a slash: "workbench.js"
  std::string_view contentType;
  std::string_view text;
};

// workbench.html, .js, .css and favicon.svg; report.js and .css for the scenes that it saves; none: the
// program was built without Node.
[[nodiscard]] std::span<const PageFile> pageFiles();

}  // namespace workbench

#endif
