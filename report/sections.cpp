#include "report/sections.h"

#include <fmt/core.h>

#include "report/html.h"

namespace report {

std::string placeId(const char* part, std::size_t reference) {
  return fmt::format("{}-{}", part, reference);
}

std::string placeId(const char* part, std::size_t reference, std::size_t condition) {
  return fmt::format("{}-{}-{}", part, reference, condition);
}

std::string viewId(std::size_t reference, std::size_t condition) {
  return fmt::format("{}-{}", reference, condition);
}

std::string copyButton(const std::string& id, const std::string& what) {
  return element("button", {{"type", "button"}, {"class", "copy script-only"}, {"data-copy", "#" + id}},
                 "Copy " + what) +
         element("span", {{"class", "copied"}, {"aria-live", "polite"}}, "");
}

std::string section(const std::string& id, const char* kind, int level, const std::string& title,
                    const std::string& content) {
  const std::string heading = fmt::format("h{}", level);
  return element("section", {{"id", id}, {"class", kind}}, element(heading, title) + content) + "\n";
}

}  // namespace report
