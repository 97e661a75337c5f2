#include "host/script.h"

#include <fmt/core.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "host/answer_parsing.h"
#include "host/run_ended.h"

namespace host {
namespace {

enum class Value { kNone, kOptional, kNeeded };

struct Tag {
  std::string_view name;
  AnswerKind kind;
  Value value;
};

constexpr std::array<Tag, 9> kTags = {{
    {"integer", AnswerKind::kInteger, Value::kNeeded},
    {"text", AnswerKind::kText, Value::kOptional},
    {"float", AnswerKind::kFloat, Value::kNeeded},
    {"open", AnswerKind::kOpen, Value::kNeeded},
    {"save", AnswerKind::kSave, Value::kNeeded},
    {"yes", AnswerKind::kYes, Value::kNone},
    {"no", AnswerKind::kNo, Value::kNone},
    {"cancel", AnswerKind::kCancel, Value::kNone},
    {"message", AnswerKind::kMessage, Value::kNeeded},
}};

[[noreturn]] void refuse(const std::string& path, int line, const std::string& why) {
  throw RunEnded{kExitBadInput, fmt::format("{}:{}: {}", path, line, why)};
}

const Tag& knownTag(std::string_view name, const std::string& path, int line) {
  std::string names;
  for (const Tag& tag : kTags) {
    if (tag.name == name) return tag;
    names += (names.empty() ? "" : ", ") + std::string(tag.name);
  }
  refuse(path, line, fmt::format("unknown answer \"{}\"; the answers are {}", name, names));
}

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

// Where a '#' stands between blanks or ends of the line, with the backslashes before it: its place and the
// number of these. None from `start` on: npos.
struct LoneHash {
  std::size_t at;
  std::size_t backslashes;
};

LoneHash loneHash(std::string_view line, std::size_t start) {
  for (std::size_t at = line.find('#', start); at != std::string_view::npos; at = line.find('#', at + 1)) {
    std::size_t begin = at;
    while (begin > 0 && line[begin - 1] == '\\') --begin;
    const bool opens = begin == 0 || isBlank(line[begin - 1]);
    const bool closes = at + 1 == line.size() || isBlank(line[at + 1]);
    if (opens && closes) return {at, at - begin};
  }
  return {std::string_view::npos, 0};
}

// Without the comment, and without one backslash of every '#' that is none.
std::string withoutComment(std::string_view line) {
  if (trimmed(line).starts_with('#')) return {};
  std::string text;
  std::size_t done = 0;
  for (LoneHash hash = loneHash(line, 0); hash.at != std::string_view::npos; hash = loneHash(line, done)) {
    if (hash.backslashes == 0) return text + std::string(line.substr(done, hash.at - done));
    text += std::string(line.substr(done, hash.at - 1 - done)) + '#';
    done = hash.at + 1;
  }
  return text + std::string(line.substr(done));
}

std::optional<Answer> answerOf(std::string_view rawLine, const std::string& path, int number) {
  const std::string line = trimmed(withoutComment(rawLine));
  if (line.empty()) return std::nullopt;
  const std::size_t blank = line.find_first_of(" \t");
  const Tag& tag = knownTag(std::string_view(line).substr(0, blank), path, number);
  const std::string value = blank == std::string::npos ? std::string() : trimmed(line.substr(blank));
  const std::string quoted = fmt::format("\"{}\"", tag.name);
  if (tag.value == Value::kNeeded && value.empty()) refuse(path, number, quoted + " needs a value after it");
  if (tag.value == Value::kNone && !value.empty()) refuse(path, number, quoted + " takes no value");
  return Answer{tag.kind, value, number};
}

}  // namespace

std::string_view tagOf(AnswerKind kind) {
  for (const Tag& tag : kTags)
    if (tag.kind == kind) return tag.name;
  return {};
}

std::string scriptLine(AnswerKind kind, const std::string& value) {
  std::string line(tagOf(kind));
  if (!value.empty()) line += " " + value;
  for (LoneHash hash = loneHash(line, 0); hash.at != std::string::npos; hash = loneHash(line, hash.at + 2))
    line.insert(hash.at, 1, '\\');
  return line;
}

Script parseScript(std::string_view text, const std::string& path) {
  Script script{path, std::filesystem::absolute(path).parent_path().string(), {}};
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    if (const std::optional<Answer> answer = answerOf(text.substr(0, end), path, number))
      script.answers.push_back(*answer);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return script;
}

Script readScript(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (std::filesystem::is_directory(path) || !file)
    throw RunEnded{kExitBadInput,
                   fmt::format("Cannot read the script {}: check the path and its permissions.", path)};
  if (file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
  return parseScript(text.str(), path);
}

}  // namespace host
