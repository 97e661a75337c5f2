#include "cluster/shell_words.h"

#include <fmt/core.h>

#include <algorithm>

namespace cluster {
namespace {

// Not std::isalnum, which asks the locale.
bool isPlain(char letter) {
  const bool letterOrDigit = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                             (letter >= '0' && letter <= '9');
  return letterOrDigit || std::string_view("_-./,:+@%=").find(letter) != std::string_view::npos;
}

bool isControl(char letter) {
  return (letter >= 0 && letter < ' ') || letter == '\x7f';
}

// Bytes above 127 stay: they are letters of UTF-8.
std::string escaped(char letter) {
  if (isControl(letter)) return fmt::format("\\{:03o}", static_cast<unsigned>(letter));
  return letter == '\'' || letter == '\\' ? std::string("\\") + letter : std::string(1, letter);
}

std::string inAnsiQuotes(std::string_view word) {
  std::string text = "$'";
  for (const char letter : word) text += escaped(letter);
  return text + "'";
}

}  // namespace

std::string quotedWord(std::string_view word) {
  if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) return std::string(word);
  if (std::any_of(word.begin(), word.end(), isControl)) return inAnsiQuotes(word);
  std::string text = "'";
  for (const char letter : word) text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return text + "'";
}

std::string shellLine(const Command& command) {
  std::string line;
  for (const std::string& word : command) line += (line.empty() ? "" : " ") + quotedWord(word);
  return line;
}

}  // namespace cluster
