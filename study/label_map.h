// Maps of codes, with a table of what the codes mean.
#ifndef TAVMAP_STUDY_LABEL_MAP_H
#define TAVMAP_STUDY_LABEL_MAP_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/image.h"
#include "results/output_names.h"

namespace study {

// Names of the codes 0, 1, ... below Count, each of the enumeration Code.
template <typename Code, std::size_t Count>
[[nodiscard]] std::vector<std::string> codeNames(const char* (*nameOf)(Code)) {
  std::vector<std::string> names;
  for (std::size_t code = 0; code < Count; ++code) names.emplace_back(nameOf(static_cast<Code>(code)));
  return names;
}

// Writes both files into the staging folder. run: header of a run, for the grid. codes: one per voxel, in
// the order of the image. names: of the codes from 0. Throws formats::FileError.
void writeLabelMap(const Staging& staging, const std::string& image, const std::string& table,
                   const formats::ImageHeader& run, const std::vector<std::uint8_t>& codes,
                   const std::vector<std::string>& names);

}  // namespace study

#endif
