// What the page of a connectome is made from.
#ifndef TAVMAP_REPORT_CONNECTOME_OUTPUTS_H
#define TAVMAP_REPORT_CONNECTOME_OUTPUTS_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "connectome/connectome_record.h"
#include "connectome/edge_shares.h"
#include "formats/json_file.h"
#include "render/matrix_picture.h"

namespace report {

struct ConnectomeOutputs {
  std::filesystem::path folder;
  std::string prefix, file;  // of the record
  formats::Json json;        // numbers of the page are quoted from it
  connectome::Record record;
  [[nodiscard]] std::string path(const std::string& name) const { return (folder / name).string(); }
};
[[nodiscard]] ConnectomeOutputs readConnectomeOutputs(const std::filesystem::path& folder,
                                                      const std::string& prefix);

// The magnitude that gets full colour: the 98th percentile of all, so that a few strong edges darken no
// others.
[[nodiscard]] double fullMagnitude(const connectome::EdgeMatrix& matrix);

// Nodes as their table has them, in the order of pictures.
struct PictureNodes {
  std::vector<std::size_t> order;           // place in the picture -> row of the matrices
  std::vector<render::MatrixGroup> groups;  // networks
  std::vector<std::string> names;           // in that order; none where there are too many to be read
};
[[nodiscard]] PictureNodes pictureNodes(const std::string& nodesFile, bool byNetwork);

// A measure of a condition as a picture: what passes at the largest q in full colour.
[[nodiscard]] render::MatrixPicture measurePicture(const ConnectomeOutputs& outputs, std::size_t condition,
                                                   std::size_t measure);

// Names of pictures and their bytes.
using Figures = std::vector<std::pair<std::string, std::string>>;

// A matrix in a page, whose letters take the colour of the page's; the same alone, STEM.svg, and STEM.png are
// added to the figures. words: markup below it.
[[nodiscard]] std::string matrixFigure(const render::MatrixPicture& picture, const std::string& words,
                                       const std::string& stem, Figures& figures);

// Sections, as HTML. What they draw is added to the figures.
[[nodiscard]] std::string connectomeSummary(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeMatrices(const ConnectomeOutputs& outputs, Figures& figures);
[[nodiscard]] std::string connectomeNodes(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeEdges(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeLimits(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeMethods(const ConnectomeOutputs& outputs);

}  // namespace report

#endif
