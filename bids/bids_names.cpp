#include "bids/bids_names.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace study {
namespace {

// The order in which the standard writes entities; "contrast" and "stat" are those of statistic
// maps, as other tools of the field write them.
constexpr std::array<std::string_view, 29> kEntityOrder = {
    "sub",   "ses",   "sample", "task", "tracksys", "acq",    "ce",  "trc",      "stain", "rec",
    "dir",   "run",   "mod",    "echo", "flip",     "inv",    "mt",  "part",     "proc",  "hemi",
    "space", "split", "res",    "den",  "label",    "cohort", "seg", "contrast", "stat"};

std::size_t rankOf(std::string_view key) {
  if (key == "desc") return kEntityOrder.size() + 1;  // after unknown keys
  const auto found = std::find(kEntityOrder.begin(), kEntityOrder.end(), key);
  return static_cast<std::size_t>(found - kEntityOrder.begin());
}

bool isDigits(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::string_view withoutLeadingZeros(std::string_view text) {
  const std::size_t first = text.find_first_not_of('0');
  return first == std::string_view::npos ? text.substr(text.size() - 1) : text.substr(first);
}

bool addEntity(std::string_view piece, BidsName& name) {
  const std::size_t dash = piece.find('-');
  if (dash == std::string_view::npos || dash == 0 || dash + 1 == piece.size()) return false;
  name.entities.emplace_back(piece.substr(0, dash), piece.substr(dash + 1));
  return true;
}

}  // namespace

std::string BidsName::get(std::string_view key) const {
  for (const auto& [entity, value] : entities) {
    if (entity == key) return value;
  }
  return "";
}

void BidsName::set(std::string_view key, std::string value) {
  for (auto& [entity, old] : entities) {
    if (entity == key) {
      old = std::move(value);
      return;
    }
  }
  entities.emplace_back(key, std::move(value));
}

void BidsName::erase(std::string_view key) {
  std::erase_if(entities, [key](const auto& entity) { return entity.first == key; });
}

BidsName parseBidsName(std::string_view fileName) {
  BidsName name;
  const std::size_t dot = std::min(fileName.find('.'), fileName.size());
  name.extension = fileName.substr(dot);
  std::string_view stem = fileName.substr(0, dot);
  for (std::size_t bar = stem.find('_'); bar != std::string_view::npos; bar = stem.find('_')) {
    if (!addEntity(stem.substr(0, bar), name)) return {};
    stem.remove_prefix(bar + 1);
  }
  if (stem.empty() || name.entities.empty() || stem.find('-') != std::string_view::npos) return {};
  name.suffix = stem;
  return name;
}

std::string formatEntities(const BidsName& name) {
  auto ordered = name.entities;
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const auto& a, const auto& b) { return rankOf(a.first) < rankOf(b.first); });
  std::string text;
  for (const auto& [key, value] : ordered)
    text += fmt::format("{}{}-{}", text.empty() ? "" : "_", key, value);
  return text;
}

std::string formatBidsName(const BidsName& name) {
  const std::string entities = formatEntities(name);
  return entities + (entities.empty() ? "" : "_") + name.suffix + name.extension;
}

std::string bidsLabel(std::string_view text) {
  std::string label;
  for (const char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) label += c;
  }
  return label.empty() ? "x" : label;
}

bool sameLabel(std::string_view a, std::string_view b) {
  if (isDigits(a) && isDigits(b)) return withoutLeadingZeros(a) == withoutLeadingZeros(b);
  return a == b;
}

std::string withoutPrefix(std::string_view label, std::string_view key) {
  const std::string prefix = std::string(key) + "-";
  if (label.substr(0, prefix.size()) == prefix) label.remove_prefix(prefix.size());
  return std::string(label);
}

}  // namespace study
