// What the page of a connectome is made from.
#ifndef TAVMAP_REPORT_CONNECTOME_OUTPUTS_H
#define TAVMAP_REPORT_CONNECTOME_OUTPUTS_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "connectome/edge_shares.h"
#include "connectome/record.h"
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

// Nodes as their table has them, in the order of pictures.
struct PictureNodes {
  std::vector<std::size_t> order;           // place in the picture -> row of the matrices
  std::vector<render::MatrixGroup> groups;  // networks
};
[[nodiscard]] PictureNodes pictureNodes(const std::string& nodesFile, bool byNetwork);

// A measure of a condition as a picture: what passes at the largest q in full colour.
[[nodiscard]] render::MatrixPicture measurePicture(const ConnectomeOutputs& outputs, std::size_t condition,
                                                   std::size_t measure);

// Names of pictures and their bytes.
using Figures = std::vector<std::pair<std::string, std::string>>;

// Sections, as HTML. What they draw is added to the figures.
[[nodiscard]] std::string connectomeSummary(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeMatrices(const ConnectomeOutputs& outputs, Figures& figures);
[[nodiscard]] std::string connectomeNodes(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeEdges(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeLimits(const ConnectomeOutputs& outputs);
[[nodiscard]] std::string connectomeMethods(const ConnectomeOutputs& outputs);

}  // namespace report

#endif
