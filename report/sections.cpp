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

std::string section(const std::string& id, const char* kind, int level, const std::string& title,
                    const std::string& content) {
  const std::string heading = fmt::format("h{}", level);
  return element("section", {{"id", id}, {"class", kind}}, element(heading, title) + content) + "\n";
}

}  // namespace report
