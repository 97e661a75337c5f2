#include "results/percent_encoding.h"

#include <fmt/core.h>

#include <charconv>
#include <cstring>

namespace study {

std::string percentEncoded(const std::string& path) {
  constexpr const char* kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string text;
  for (const char c : path) {
    if (std::strchr(kPlain, c) != nullptr)
      text += c;
    else
      text += fmt::format("%{:02X}", static_cast<unsigned>(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string percentDecoded(const std::string& text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* const digits = text.data() + i + 1;
    const bool isEscape = text[i] == '%' && i + 2 < text.size() &&
                          std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
    decoded += isEscape ? static_cast<char>(value) : text[i];
    if (isEscape) i += 2;
  }
  return decoded;
}

}  // namespace study
