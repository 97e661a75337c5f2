#include "formats/label_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <set>

#include "formats/atomic_file.h"
#include "formats/table.h"

namespace formats {
namespace {

std::optional<std::uint32_t> parseColor(const Table& table, std::size_t row, std::size_t column) {
  const std::string& text = table.cell(row, column);
  if (isMissing(text)) return std::nullopt;
  std::uint32_t color = 0;
  const char* first = text.data() + (text[0] == '#' ? 1 : 0);
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(first, last, color, 16);
  if (error != std::errc() || end != last || last - first != 6) {
    table.fail(row, fmt::format("\"{}\" is no color", text), "Write six hexadecimal digits, such as #ff8800");
  }
  return color;
}

}  // namespace

const Label* LabelTable::find(std::int32_t index) const {
  const auto found =
      std::find_if(labels.begin(), labels.end(), [&](const Label& l) { return l.index == index; });
  return found == labels.end() ? nullptr : &*found;
}

const Label* LabelTable::find(const std::string& name) const {
  const auto found =
      std::find_if(labels.begin(), labels.end(), [&](const Label& l) { return l.name == name; });
  return found == labels.end() ? nullptr : &*found;
}

std::string LabelTable::nameOf(std::int32_t index) const {
  const Label* label = find(index);
  return label != nullptr ? label->name : "label-" + std::to_string(index);
}

LabelTable readLabelTable(const std::string& path) {
  return parseLabelTable(readTextFile(path), path);
}

LabelTable parseLabelTable(std::string_view text, const std::string& path) {
  const Table table = Table::parse(text, path);
  const std::size_t index = table.require("index"), name = table.require("name");
  const auto color = table.find("color");
  LabelTable result;
  std::set<std::int32_t> seen;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    Label label{table.integer(row, index), table.cell(row, name), std::nullopt};
    if (!seen.insert(label.index).second) {
      table.fail(row, fmt::format("the index {} comes twice", label.index),
                 "Give every region its own index");
    }
    if (label.name.empty()) table.fail(row, "a region has no name", "Name it");
    if (color) label.color = parseColor(table, row, *color);
    if (label.index != 0) result.labels.push_back(std::move(label));
  }
  return result;
}

void writeLabelTable(const std::string& path, const LabelTable& table) {
  std::string text = "index\tname\tcolor\n";
  for (const auto& label : table.labels) {
    char color[16] = "n/a";
    if (label.color)
      std::snprintf(color, sizeof color, "#%06x", static_cast<unsigned>(*label.color & 0xFFFFFFU));
    text += fmt::format("{}\t{}\t{}\n", label.index, tsvCell(label.name), color);
  }
  writeTextFile(path, text);
}

std::string labelTableBeside(const std::string& imagePath) {
  for (const std::string ending : {".nii.gz", ".nii"}) {
    if (!imagePath.ends_with(ending)) continue;
    const std::string table = imagePath.substr(0, imagePath.size() - ending.size()) + ".tsv";
    return std::filesystem::exists(table) ? table : "";
  }
  return "";
}

}  // namespace formats
