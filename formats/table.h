// Text tables with a header line: tab, comma or semicolon separated, or by blanks where the header
// has none of these. Understands quotes ("" for a quote within), CRLF and a byte order mark.
#ifndef TAVMAP_FORMATS_TABLE_H
#define TAVMAP_FORMATS_TABLE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

class Table {
 public:
  // Throws FileError: unreadable, binary or empty file, a row with too many or too few cells.
  static Table read(const std::string& path);
  static Table parse(std::string_view text, const std::string& path);

  [[nodiscard]] std::size_t rows() const { return rows_.size(); }
  [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }
  // By name, in any case of letters; empty when there is none.
  [[nodiscard]] std::optional<std::size_t> find(std::string_view name) const;
  // As find; throws FileError that lists the columns there are.
  [[nodiscard]] std::size_t require(std::string_view name) const;

  [[nodiscard]] std::size_t line(std::size_t row) const { return rows_[row].line; }  // of the file, from 1
  [[nodiscard]] const std::string& cell(std::size_t row, std::size_t column) const {
    return rows_[row].cells[column];
  }
  // The number in a cell, empty for n/a; throws FileError for anything else.
  [[nodiscard]] std::optional<double> number(std::size_t row, std::size_t column) const;
  // A whole number of 32 bits; n/a is refused.
  [[nodiscard]] std::int32_t integer(std::size_t row, std::size_t column) const;

  [[noreturn]] void fail(std::size_t row, const std::string& reason, const std::string& remedy) const;

 private:
  struct Row {
    std::size_t line;  // from 1
    std::vector<std::string> cells;
  };
  class Parser;

  std::string path_;
  std::vector<std::string> columns_;
  std::vector<Row> rows_;
};

// The cell text that stands for a missing value.
[[nodiscard]] bool isMissing(std::string_view cell);

// A cell as written into a tab-separated table: quoted where it has to be.
[[nodiscard]] std::string tsvCell(const std::string& text);

}  // namespace formats

#endif
