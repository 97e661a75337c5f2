#include "request/toml_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

std::string shortNumber(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

int lineOf(const toml::node& node) {
  return static_cast<int>(node.source().begin.line);
}

}  // namespace

void failAt(const std::string& file, int line, const std::string& message) {
  throw InputError(fmt::format("{}{}: {}", file, line > 0 ? ":" + std::to_string(line) : "", message));
}

TomlTable::TomlTable(const toml::table& table, std::string file, std::string where,
                     std::vector<std::string> known)
    : table_(table), file_(std::move(file)), where_(std::move(where)) {
  for (const auto& [key, value] : table_) {
    const std::string name(key.str());
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    failAt(file_, static_cast<int>(key.source().begin.line),
           fmt::format("unknown key '{}' in {}{}", name, where_, suggestion(name, known)));
  }
}

int TomlTable::line() const {
  return lineOf(table_);
}

int TomlTable::line(std::string_view key) const {
  const toml::node* node = table_.get(key);
  return node == nullptr ? line() : lineOf(*node);
}

void TomlTable::fail(std::string_view key, const std::string& message) const {
  failAt(file_, line(key), fmt::format("'{}' in {} {}", key, where_, message));
}

std::string TomlTable::text(std::string_view key, std::string fallback) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return fallback;
  if (!node->is_string()) fail(key, "must be a text in quotes");
  return node->as_string()->get();
}

bool TomlTable::flag(std::string_view key, bool fallback) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return fallback;
  if (!node->is_boolean()) fail(key, "must be true or false");
  return node->as_boolean()->get();
}

int TomlTable::integer(std::string_view key, int fallback, int least, int most) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return fallback;
  const std::string range = fmt::format("{} to {}", least, most);
  if (!node->is_integer()) fail(key, "must be a whole number from " + range);
  const std::int64_t value = node->as_integer()->get();
  if (value < least || value > most) fail(key, fmt::format("is {}, outside {}", value, range));
  return static_cast<int>(value);
}

double TomlTable::number(std::string_view key, double fallback, double least, double most) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return fallback;
  const auto value = node->value<double>();
  if (!node->is_number() || !value || !std::isfinite(*value)) fail(key, "must be a number");
  if (*value < least || *value > most) {
    fail(key,
         fmt::format("is {}, outside {} to {}", shortNumber(*value), shortNumber(least), shortNumber(most)));
  }
  return *value;
}

std::vector<std::string> TomlTable::texts(std::string_view key, bool integersToo) const {
  const toml::node* node = table_.get(key);
  std::vector<std::string> result;
  const auto add = [&](const toml::node& item) {
    if (item.is_string()) {
      result.push_back(item.as_string()->get());
    } else if (integersToo && item.is_integer()) {
      result.push_back(std::to_string(item.as_integer()->get()));
    } else {
      fail(key, integersToo ? "must hold names in quotes or whole numbers" : "must hold texts in quotes");
    }
  };
  if (node == nullptr) return result;
  if (!node->is_array()) {
    add(*node);
    return result;
  }
  for (const toml::node& item : *node->as_array()) add(item);
  return result;
}

std::vector<double> TomlTable::numbers(std::string_view key) const {
  std::vector<double> result;
  const toml::array* items = array(key);
  if (items == nullptr) return result;
  for (const toml::node& item : *items) {
    const auto value = item.value<double>();
    if (!item.is_number() || !value || !std::isfinite(*value)) fail(key, "must hold numbers");
    result.push_back(*value);
  }
  return result;
}

const toml::array* TomlTable::array(std::string_view key) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return nullptr;
  if (!node->is_array()) fail(key, "must be a list in [ ]");
  return node->as_array();
}

const toml::table* TomlTable::subtable(std::string_view key) const {
  const toml::node* node = table_.get(key);
  if (node == nullptr) return nullptr;
  if (!node->is_table()) fail(key, "must be a table");
  return node->as_table();
}

}  // namespace study
