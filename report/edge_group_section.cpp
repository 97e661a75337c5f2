#include "report/edge_group_section.h"

#include <fmt/core.h>

#include <numeric>
#include <set>

#include "connectome/result_files.h"
#include "formats/table.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

constexpr double kLevel = 0.05;

std::string fileOf(const EdgeGroupFiles& files, const std::string& what) {
  return fmt::format("{}_meas-{}_{}.tsv", files.stem, files.measure, what);
}

render::MatrixPicture picture(const EdgeGroupFiles& files) {
  std::vector<std::string> names;
  const auto read = [&](const char* stat) {
    const std::string file = fileOf(files, fmt::format("stat-{}_relmat", stat));
    return connectome::readMatrixFile((files.folder / file).string(), names);
  };
  const connectome::EdgeMatrix t = read("t"), p = read("pfwe");
  PictureNodes nodes;
  nodes.order.resize(t.nodes);
  std::iota(nodes.order.begin(), nodes.order.end(), std::size_t{0});
  if (!files.nodesFile.empty()) nodes = pictureNodes(files.nodesFile, true);
  render::MatrixPicture shown;
  shown.size = t.nodes;
  shown.full = fullMagnitude(t);
  shown.groups = nodes.groups;
  shown.names = nodes.names;
  for (const std::size_t row : nodes.order) {
    for (const std::size_t column : nodes.order) {
      shown.values.push_back(t.at(row, column));
      shown.isEmphasised.push_back(p.at(row, column) <= kLevel ? 1 : 0);
    }
  }
  shown.title = fmt::format("t of {}", files.measure);
  shown.caption = fmt::format("rows: sources, columns: targets; faint: family-wise p above {}", kLevel);
  return shown;
}

// The first line of each component.
std::string componentRows(const formats::Table& table) {
  std::string rows;
  std::set<std::string> seen;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    if (!seen.insert(table.cell(row, table.require("component"))).second) continue;
    std::string cells = element("td", text(table.cell(row, table.require("sign"))));
    for (const char* column : {"edges", "nodes", "mass", "pfwe"})
      cells += element("td", quotedCell(row, column, table.cell(row, table.require(column)), Digits::kFour));
    rows += element("tr", cells);
  }
  return rows;
}

std::string componentTable(const EdgeGroupFiles& files) {
  const std::string file = fileOf(files, "components");
  const std::string rows = componentRows(formats::Table::read((files.folder / file).string()));
  if (rows.empty()) return element("p", "No edge reaches the z that forms components.");
  std::string head;
  for (const char* words : {"Sign", "Edges", "Regions", "Mass", "family-wise p"})
    head += element("th", {{"scope", "col"}}, words);
  return element(
      "table", {{"data-file", file}},
      element("caption",
              "Components of edges that touch. Their p speaks of each as a whole, not of its edges") +
          element("thead", element("tr", head)) + element("tbody", rows));
}

}  // namespace

std::string edgeGroupId(const EdgeGroupFiles& files) {
  return fmt::format("edges-{}-{}", files.stem, files.measure);
}

std::string edgeGroupSection(const EdgeGroupFiles& files, const std::string& title, Figures& figures) {
  const std::string stem = fmt::format("{}_meas-{}_stat-t_relmat", files.stem, files.measure);
  const render::MatrixPicture shown = picture(files);
  return section(edgeGroupId(files), "part", 2, title,
                 matrixFigure(shown, text(fmt::format("{}. {}", shown.title, shown.caption)), stem, figures) +
                     componentTable(files));
}

}  // namespace report
