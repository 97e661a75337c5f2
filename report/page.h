// A whole page: head, contents, sections, data and script.
#ifndef TAVMAP_REPORT_PAGE_H
#define TAVMAP_REPORT_PAGE_H

#include <string>
#include <utility>
#include <vector>

namespace report {

struct PageParts {
  std::string title;                                          // plain text
  std::string lead;                                           // markup below the heading
  std::vector<std::pair<std::string, std::string>> contents;  // ids of sections and their titles (markup)
  std::string body;                                           // sections
  std::string data;                                           // JSON for the script; empty: none
  std::string volumes;                                        // script elements that it names
};

[[nodiscard]] std::string page(const PageParts& parts);

}  // namespace report

#endif
