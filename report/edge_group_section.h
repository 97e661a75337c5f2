// A test over participants at every edge, as a section of a page.
#ifndef TAVMAP_REPORT_EDGE_GROUP_SECTION_H
#define TAVMAP_REPORT_EDGE_GROUP_SECTION_H

#include <filesystem>
#include <string>

#include "report/connectome_outputs.h"

namespace report {

// What connectome::writeGroupEdges() has written.
struct EdgeGroupFiles {
  std::filesystem::path folder;
  std::string stem;     // as given there
  std::string measure;  // "NetInfluence"
  std::string
      nodesFile;  // a participant's table of nodes, for the order of pictures, with its path; empty: none
};

// Of its section, unique in a page of several tests.
[[nodiscard]] std::string edgeGroupId(const EdgeGroupFiles& files);

// t as a matrix, edges with a family-wise p of at most .05 in full colour, and a table of the components.
// title: markup. Throws formats::FileError.
[[nodiscard]] std::string edgeGroupSection(const EdgeGroupFiles& files, const std::string& title,
                                           Figures& figures);

}  // namespace report

#endif
