#include "report/connectome_outputs.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "connectome/result_files.h"
#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/table.h"

namespace report {

double fullMagnitude(const connectome::EdgeMatrix& matrix) {
  std::vector<double> magnitudes;
  for (const double value : matrix.values)
    if (std::isfinite(value)) magnitudes.push_back(std::abs(value));
  if (magnitudes.empty()) return 1;
  const auto at =
      magnitudes.begin() + static_cast<std::ptrdiff_t>(0.98 * static_cast<double>(magnitudes.size() - 1));
  std::nth_element(magnitudes.begin(), at, magnitudes.end());
  return *at > 0 ? *at : 1;
}

ConnectomeOutputs readConnectomeOutputs(const std::filesystem::path& folder, const std::string& prefix) {
  ConnectomeOutputs outputs{folder, prefix, connectome::recordFileOf(prefix), {}, {}};
  const std::string path = outputs.path(outputs.file);
  outputs.json = formats::parseJson(formats::readTextFile(path), path);
  outputs.record = connectome::readRecordFile(path);
  return outputs;
}

PictureNodes pictureNodes(const std::string& nodesFile, bool byNetwork) {
  const formats::Table table = formats::Table::read(nodesFile);
  const std::size_t place = table.require("place"), network = table.require("network");
  PictureNodes nodes;
  nodes.order.resize(table.rows());
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const auto at = static_cast<std::size_t>(table.integer(row, place) - 1);
    if (at >= table.rows()) table.fail(row, "a place behind the last node", "Make the file again");
    nodes.order[at] = row;
  }
  if (table.rows() <= render::kMostNamedRows)
    for (const std::size_t row : nodes.order) nodes.names.push_back(table.cell(row, table.require("name")));
  for (std::size_t at = 0; byNetwork && at < nodes.order.size(); ++at) {
    const std::string& cell = table.cell(nodes.order[at], network);
    const std::string name = formats::isMissing(cell) ? "others" : cell;
    if (nodes.groups.empty() || nodes.groups.back().name != name) nodes.groups.push_back({at, at, name});
    nodes.groups.back().end = at + 1;
  }
  if (nodes.groups.size() == 1) nodes.groups.clear();  // one network parts nothing
  return nodes;
}

render::MatrixPicture measurePicture(const ConnectomeOutputs& outputs, std::size_t condition,
                                     std::size_t measure) {
  const connectome::ConditionRecord& of = outputs.record.conditions[condition];
  const connectome::MeasureRecord& shown = of.measures[measure];
  std::vector<std::string> names;
  const connectome::EdgeMatrix values = connectome::readMatrixFile(outputs.path(shown.file), names);
  const connectome::EdgeMatrix q = connectome::readMatrixFile(outputs.path(shown.qFile), names);
  const PictureNodes nodes = pictureNodes(outputs.path(of.nodesFile), !outputs.record.networks.empty());
  if (nodes.order.size() != values.nodes || q.nodes != values.nodes)
    throw formats::FileError(outputs.path(shown.file), "another number of nodes than the table of nodes",
                             "Make the files again");
  render::MatrixPicture picture;
  picture.size = values.nodes;
  picture.full = fullMagnitude(values);
  picture.groups = nodes.groups;
  picture.names = nodes.names;
  for (const std::size_t row : nodes.order) {
    for (const std::size_t column : nodes.order) {
      picture.values.push_back(values.at(row, column));
      picture.isEmphasised.push_back(q.at(row, column) <= outputs.record.q.back() ? 1 : 0);
    }
  }
  picture.title = fmt::format("{}: {}", of.name, shown.measure);
  picture.caption =
      fmt::format("rows: sources, columns: targets; faint: does not pass at q = {}", outputs.record.q.back());
  return picture;
}

}  // namespace report
