#include "host/fields.h"

#include <algorithm>
#include <cstring>

namespace host {

void fillField(const std::string& text, char* field, std::size_t bytes) {
  std::size_t length = std::min(text.size(), bytes - 1);
  const auto continues = [&](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
  };
  while (length > 0 && length < text.size() && continues(length)) --length;
  std::memset(field, 0, bytes);
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): zeros stand behind it already
  std::memcpy(field, text.data(), length);
}

}  // namespace host
