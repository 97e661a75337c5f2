#include "formats/table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"

namespace formats {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char kBlanks = ' ';  // stands for "any run of blanks" as separator

bool equalInAnyCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char p, char q) {
    return std::tolower(static_cast<unsigned char>(p)) == std::tolower(static_cast<unsigned char>(q));
  });
}

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

char separatorOf(std::string_view headerLine) {
  for (const char candidate : {'\t', ',', ';'}) {
    if (headerLine.find(candidate) != std::string_view::npos) return candidate;
  }
  return kBlanks;
}

}  // namespace

// Walks the text once; a quoted cell may contain separators and line ends.
class Table::Parser {
 public:
  Parser(std::string_view text, const std::string& path) : text_(text), path_(path) {
    separator_ = separatorOf(text_.substr(0, text_.find('\n')));
  }

  // The next row that is not blank; empty at the end of the text.
  std::optional<Row> next() {
    while (at_ < text_.size()) {
      Row row = readRow();
      if (row.cells.size() > 1 || !row.cells[0].empty()) return row;
    }
    return std::nullopt;
  }

 private:
  Row readRow() {
    Row row{line_, {}};
    skipBlanks();
    do {
      row.cells.push_back(readCell());
    } while (takeSeparator());
    takeLineEnd();
    return row;
  }

  std::string readCell() {
    std::string cell;
    if (at_ < text_.size() && text_[at_] == '"') return readQuoted();
    while (at_ < text_.size() && !isSeparator(text_[at_]) && !atLineEnd()) cell += text_[at_++];
    return trimmed(cell);
  }

  std::string readQuoted() {
    std::string cell;
    const std::size_t openedAt = line_;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '\n') ++line_;
      const bool quote = text_[at_] == '"';
      const bool doubled = quote && at_ + 1 < text_.size() && text_[at_ + 1] == '"';
      if (quote && !doubled) {
        ++at_;
        skipToSeparator();
        return cell;
      }
      cell += text_[at_];
      if (doubled) ++at_;
    }
    throw FileError(path_, fmt::format("line {}: a quotation mark is not closed", openedAt), "Close it");
  }

  // Text between a closing quote and the separator belongs to no cell.
  void skipToSeparator() {
    while (at_ < text_.size() && !isSeparator(text_[at_]) && !atLineEnd()) ++at_;
  }

  void skipBlanks() {
    if (separator_ != kBlanks) return;
    while (at_ < text_.size() && isSeparator(text_[at_])) ++at_;
  }

  bool takeSeparator() {
    if (at_ >= text_.size() || !isSeparator(text_[at_])) return false;
    if (separator_ != kBlanks) {
      ++at_;
      return true;
    }
    skipBlanks();
    return at_ < text_.size() && !atLineEnd();  // blanks at the end of a line separate nothing
  }

  void takeLineEnd() {
    if (at_ < text_.size() && text_[at_] == '\r') ++at_;
    if (at_ < text_.size() && text_[at_] == '\n') ++at_;
    ++line_;
  }

  [[nodiscard]] bool isSeparator(char c) const { return separator_ == kBlanks ? c == ' ' : c == separator_; }
  [[nodiscard]] bool atLineEnd() const { return text_[at_] == '\n' || text_[at_] == '\r'; }

  std::string_view text_;
  const std::string& path_;
  char separator_;
  std::size_t at_ = 0, line_ = 1;
};

Table Table::read(const std::string& path) {
  return parse(readTextFile(path), path);
}

Table Table::parse(std::string_view text, const std::string& path) {
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  if (text.find('\0') != std::string_view::npos) {
    throw FileError(path, "it is no text file", "Give a table of tab-separated text");
  }
  Table table;
  table.path_ = path;
  Parser parser(text, path);
  auto header = parser.next();
  if (!header) throw FileError(path, "the table is empty", "Give a table whose first line names the columns");
  table.columns_ = std::move(header->cells);
  while (auto row = parser.next()) {
    table.rows_.push_back(std::move(*row));
    const std::size_t cells = table.rows_.back().cells.size();
    if (cells != table.columns_.size()) {
      table.fail(table.rows_.size() - 1,
                 fmt::format("{} cells under {} column names", cells, table.columns_.size()),
                 "Give every column a value, n/a where there is none");
    }
  }
  return table;
}

std::optional<std::size_t> Table::find(std::string_view name) const {
  const auto found = std::find_if(columns_.begin(), columns_.end(),
                                  [&](const std::string& column) { return equalInAnyCase(column, name); });
  if (found == columns_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - columns_.begin());
}

std::size_t Table::require(std::string_view name) const {
  if (const auto column = find(name)) return *column;
  std::string present;
  for (const auto& column : columns_) present += (present.empty() ? "" : ", ") + column;
  throw FileError(path_, fmt::format("there is no column \"{}\" among: {}", name, present),
                  "Name the columns in the first line");
}

std::optional<double> Table::number(std::size_t row, std::size_t column) const {
  const std::string& text = cell(row, column);
  if (isMissing(text)) return std::nullopt;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    fail(row, fmt::format("\"{}\" under {} is no number", text, columns_[column]), "Write a number, or n/a");
  }
  return value;
}

std::int32_t Table::integer(std::size_t row, std::size_t column) const {
  const auto value = number(row, column);
  constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
  if (!value || *value != std::nearbyint(*value) || std::abs(*value) > kLargest) {
    fail(row, fmt::format("\"{}\" under {} is no whole number", cell(row, column), columns_[column]),
         "Write a whole number");
  }
  return static_cast<std::int32_t>(*value);
}

void Table::fail(std::size_t row, const std::string& reason, const std::string& remedy) const {
  throw FileError(path_, fmt::format("line {}: {}", rows_[row].line, reason), remedy);
}

bool isMissing(std::string_view cell) {
  return cell.empty() || equalInAnyCase(cell, "n/a");
}

std::string tsvCell(const std::string& text) {
  if (text.find_first_of("\t\n\r\"") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

}  // namespace formats
