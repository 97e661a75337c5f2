// Columns under a line of names: BIDS (*_dseg.tsv: index, name and perhaps color), and the names that
// others give them.
#include <fmt/core.h>

#include <charconv>

#include "formats/file_error.h"
#include "formats/label_forms.h"
#include "formats/table.h"

namespace formats {
namespace {

struct LabelColumns {
  std::optional<std::size_t> index, name;
};

// "label" is the name beside an index, and the index beside a name.
LabelColumns columnsOf(const Table& table) {
  LabelColumns columns;
  for (const char* index : {"index", "ROI_id", "ROI_index", "label"}) {
    if (!columns.index) columns.index = table.find(index);
  }
  for (const char* name : {"name", "ROI_name", "ROI_label", "label"}) {
    if (!columns.name) columns.name = table.find(name);
  }
  if (columns.index == columns.name) columns.name.reset();
  return columns;
}

bool hasLabelColumns(const LabelText& text) {
  try {
    const LabelColumns columns = columnsOf(Table::parse(text.lines()[0].text, text.path()));
    return columns.index && columns.name;
  } catch (const FileError&) {  // a quotation mark that is not closed
    return false;
  }
}

std::optional<std::uint32_t> colorInCell(const Table& table, std::size_t row, std::size_t column) {
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

LabelTable parseColumns(const LabelText& text) {
  const Table table = Table::parse(text.whole(), text.path());
  const LabelColumns columns = columnsOf(table);
  if (!columns.index || !columns.name) {  // what parts the cells is judged by more than the first line
    throw FileError(text.path(), "its lines are not parted alike",
                    "Part the cells of all lines by tabs, the column names among them");
  }
  const auto color = table.find("color");
  LabelCollector labels(text);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    Label label{table.integer(row, *columns.index), table.cell(row, *columns.name), std::nullopt};
    if (color) label.color = colorInCell(table, row, *color);
    labels.add(table.line(row), std::move(label));
  }
  return labels.take();
}

}  // namespace

LabelForm columnsForm() {
  return {"columns \"index\" and \"name\" (or \"ROI_id\" and \"ROI_name\", \"index\" and \"label\")",
          hasLabelColumns, parseColumns};
}

}  // namespace formats
