#include "report/html.h"

#include <cstddef>
#include <cstdint>

namespace report {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

const char* entityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return nullptr;
  }
}

bool isControl(unsigned char c) {
  return (c < 0x20 && c != '\t' && c != '\n') || c == 0x7F;
}

std::size_t lengthSaidBy(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xF0 && lead < 0xF5) return 4;
  return 0;
}

// Overlong forms, surrogates and what lies beyond U+10FFFF, by the second byte (RFC 3629).
bool canFollow(unsigned char lead, unsigned char second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second < 0xA0;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second < 0x90;
    default:
      return true;
  }
}

// Bytes of the character that begins here; 0: this is none.
std::size_t characterLength(std::string_view rest) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
  const std::size_t length = lengthSaidBy(byteAt(0));
  if (length == 0 || length > rest.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byteAt(i) & 0xC0U) != 0x80U) return 0;
  return length > 1 && !canFollow(byteAt(0), byteAt(1)) ? 0 : length;
}

}  // namespace

std::string text(std::string_view utf8) {
  std::string html;
  html.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::size_t length = characterLength(utf8);
    const char* entity = entityOf(utf8[0]);
    if (length == 0 || isControl(static_cast<unsigned char>(utf8[0])))
      html += kReplacement;
    else if (entity != nullptr)
      html += entity;
    else
      html += utf8.substr(0, length);
    utf8.remove_prefix(length == 0 ? 1 : length);
  }
  return html;
}

std::string name(std::string_view utf8) {
  return element("bdi", text(utf8));
}

std::string single(std::string_view tag, Attributes attributes) {
  std::string html = "<" + std::string(tag);
  for (const auto& [key, value] : attributes) {
    html.append(" ").append(key);
    if (!value.empty()) html.append("=\"").append(text(value)).append("\"");
  }
  return html + ">";
}

std::string element(std::string_view tag, Attributes attributes, std::string_view content) {
  return single(tag, attributes).append(content).append("</").append(tag).append(">");
}

std::string element(std::string_view tag, std::string_view content) {
  return element(tag, {}, content);
}

}  // namespace report
