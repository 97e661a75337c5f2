#include <fmt/core.h>

#include <cmath>

#include "connectome/result_files.h"
#include "connectome/table_text.h"
#include "formats/file_error.h"
#include "formats/table.h"

namespace connectome {

std::string numberText(double value) {
  return std::isfinite(value) ? fmt::format("{:.9g}", value) : "n/a";
}

std::string matrixText(const std::vector<Node>& nodes,
                       const std::function<std::string(std::size_t, std::size_t)>& cell) {
  std::string text;
  for (std::size_t column = 0; column < nodes.size(); ++column)
    text += (column > 0 ? "\t" : "") + formats::tsvCell(nodes[column].name);
  text += "\n";
  for (std::size_t row = 0; row < nodes.size(); ++row) {
    for (std::size_t column = 0; column < nodes.size(); ++column)
      text += (column > 0 ? "\t" : "") + cell(row, column);
    text += "\n";
  }
  return text;
}

EdgeMatrix readMatrixFile(const std::string& path, std::vector<std::string>& names) {
  const formats::Table table = formats::Table::read(path);
  names = table.columns();
  if (table.rows() != names.size())
    throw formats::FileError(
        path, fmt::format("{} rows for {} columns: no matrix of nodes", table.rows(), names.size()),
        "Make the file again");
  EdgeMatrix matrix(names.size());
  for (std::size_t row = 0; row < names.size(); ++row)
    for (std::size_t column = 0; column < names.size(); ++column)
      if (const auto value = table.number(row, column)) matrix.at(row, column) = *value;
  return matrix;
}

}  // namespace connectome
