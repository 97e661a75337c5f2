#include "request/toml_text.h"

#include <charconv>
#include <cstdio>

namespace study {
namespace {

std::string escaped(char c) {
  char code[8];
  std::snprintf(code, sizeof code, "\\u%04X", static_cast<unsigned>(static_cast<unsigned char>(c)));
  return code;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

}  // namespace

std::string tomlText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (isControl(c)) {
      quoted += escaped(c);
      continue;
    }
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

std::string tomlNumber(double value) {
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

}  // namespace study
