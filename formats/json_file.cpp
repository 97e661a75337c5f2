#include "formats/json_file.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "formats/file_error.h"

namespace formats {
namespace {

constexpr int kMaxDepth = 64;

// Hostile files nest without end; the library would follow them until the stack ends.
bool isTooDeep(const std::string& text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quoted) {
      if (c == '\\') ++i;
      if (c == '"') quoted = false;
      continue;
    }
    if (c == '"') quoted = true;
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') --depth;
    if (depth > kMaxDepth) return true;
  }
  return false;
}

std::string placeOfByte(const std::string& text, std::size_t byte) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte, text.size()));
  const auto line = 1 + std::count(text.begin(), end, '\n');
  return "line " + std::to_string(line);
}

}  // namespace

Json parseJson(const std::string& text, const std::string& path) {
  if (isTooDeep(text))
    throw FileError(path, "the JSON text is nested too deeply", "Check that it is the right file");
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw FileError(path, placeOfByte(text, error.byte) + ": this is no valid JSON",
                    "Correct the text there");
  } catch (const Json::exception&) {
    throw FileError(path, "the JSON text holds a number out of range", "Correct the number");
  }
}

JsonPlace JsonPlace::member(const char* key) const {
  if (!value_->is_object()) fail("an object is expected", "Write { ... } there");
  const auto found = value_->find(key);
  if (found == value_->end()) fail(fmt::format("\"{}\" is missing", key), fmt::format("Add \"{}\"", key));
  return {*found, path_, where_.empty() ? key : fmt::format("{}.{}", where_, key)};
}

JsonPlace JsonPlace::element(std::size_t index) const {
  return {(*value_)[index], path_, fmt::format("{}[{}]", where_, index)};
}

std::size_t JsonPlace::elements() const {
  if (!value_->is_array()) fail("a list is expected", "Write [ ... ] there");
  return value_->size();
}

std::string JsonPlace::text() const {
  if (!value_->is_string()) fail("a text is expected", "Write it in quotation marks");
  return value_->get<std::string>();
}

bool JsonPlace::boolean() const {
  if (!value_->is_boolean()) fail("true or false is expected", "Write one of them");
  return value_->get<bool>();
}

double JsonPlace::number() const {
  if (!value_->is_number()) fail("a number is expected", "Write a number");
  return value_->get<double>();
}

std::int32_t JsonPlace::integer() const {
  const double value = number();
  if (value != std::nearbyint(value) || std::abs(value) > std::numeric_limits<std::int32_t>::max()) {
    fail("a whole number is expected", "Write a whole number of at most 2147483647");
  }
  return static_cast<std::int32_t>(value);
}

void JsonPlace::allowOnly(std::initializer_list<const char*> keys) const {
  if (!value_->is_object()) fail("an object is expected", "Write { ... } there");
  for (const auto& item : value_->items()) {
    const bool known =
        std::any_of(keys.begin(), keys.end(), [&](const char* key) { return item.key() == key; });
    if (known) continue;
    std::string list;
    for (const char* key : keys) list += (list.empty() ? "" : ", ") + std::string(key);
    fail(fmt::format("\"{}\" is not known here", item.key()), "Use only: " + list);
  }
}

void JsonPlace::fail(const std::string& reason, const std::string& remedy) const {
  throw FileError(path_, (where_.empty() ? "" : where_ + ": ") + reason, remedy);
}

}  // namespace formats
