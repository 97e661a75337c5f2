// Lists of regions (VOIs): from JSON files and from label images.
#ifndef TAVMAP_FORMATS_VOI_LIST_H
#define TAVMAP_FORMATS_VOI_LIST_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/image.h"
#include "formats/label_table.h"

namespace formats {

using VoxelIndex = std::array<std::int32_t, 3>;

struct Voi {
  std::string name;
  std::vector<VoxelIndex> voxels;  // never empty in a list that was read
};

struct VoiList {
  bool talairach = false;  // coordinates are Talairach millimetres, not voxel indices
  std::vector<Voi> vois;
};

// JSON: { "talairach": bool, "vois": [ { "name", "voxels": [[x, y, z], ...] } ] }. Unknown keys are
// refused. Throws FileError with the place in the file.
[[nodiscard]] VoiList readVoiJson(const std::string& path);
[[nodiscard]] VoiList parseVoiJson(const std::string& text, const std::string& path);
void writeVoiJson(const std::string& path, const VoiList& list);

struct LabelVois {
  VoiList list;                       // by ascending index
  std::vector<std::int32_t> unnamed;  // in the image, not in the table: named "label-7"
  std::vector<Label> absent;          // in the table, no voxel in the image: left out of the list
};
[[nodiscard]] LabelVois voisFromLabels(const LabelImage& image, const LabelTable& table);

// A list from either kind of file: *.json, or a label image with its table (`tablePath`, else the
// one beside it, else names "label-7").
[[nodiscard]] LabelVois loadVois(const std::string& path, const std::string& tablePath = "");

}  // namespace formats

#endif
