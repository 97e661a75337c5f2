// The maps of a report: mosaics for every reader, and what the script needs to show them in three planes.
#ifndef TAVMAP_REPORT_MAPS_SECTION_H
#define TAVMAP_REPORT_MAPS_SECTION_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "formats/json_file.h"
#include "report/study_outputs.h"

namespace report {

struct MapsSection {
  std::string html;         // the section; empty when there is no map
  std::string definitions;  // SVG that mosaics use, to stand in the page once
  formats::Json data;       // grid, underlay and views of the script's data
  std::string volumes;      // script elements
  std::vector<std::pair<std::string, std::string>> pictures;  // names and texts of files beside the page
};

// forScript: whether data and volumes are made; limit: bytes of text that mosaics and volumes may take
// together, as far as coarser volumes can help. So many threads read and draw. Throws formats::FileError.
[[nodiscard]] MapsSection mapsSection(const StudyOutputs& outputs, bool forScript, std::size_t limit,
                                      int threads = 1);

}  // namespace report

#endif
