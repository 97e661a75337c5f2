// Names on pages: whatever the bytes, they become text without markup, and the text of that text is the same
// again once its entities are undone.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "report/html.h"

namespace {

std::string withoutEntities(std::string html) {
  constexpr std::array<std::pair<const char*, const char*>, 5> kEntities = {
      {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}}};
  std::string text;
  for (std::size_t at = 0; at < html.size();) {
    bool isEntity = false;
    for (const auto& [entity, character] : kEntities) {
      if (html.compare(at, std::string(entity).size(), entity) != 0) continue;
      text += character;
      at += std::string(entity).size();
      isEntity = true;
      break;
    }
    if (!isEntity) text += html[at++];
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string html = report::text({reinterpret_cast<const char*>(data), size});
  if (html.find_first_of("<>\"'") != std::string::npos) std::abort();
  if (report::text(withoutEntities(html)) != html) std::abort();
  return 0;
}
