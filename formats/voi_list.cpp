#include "formats/voi_list.h"

#include <fmt/core.h>

#include <map>
#include <set>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/json_file.h"
#include "formats/nifti.h"

namespace formats {
namespace {

VoxelIndex voxelOf(const JsonPlace& place) {
  if (place.elements() != 3) place.fail("a voxel has three coordinates", "Write [x, y, z]");
  return {place.element(0).integer(), place.element(1).integer(), place.element(2).integer()};
}

Voi voiOf(const JsonPlace& place) {
  place.allowOnly({"name", "voxels"});
  Voi voi{place.member("name").text(), {}};
  if (voi.name.empty()) place.member("name").fail("the name is empty", "Name the region");
  const JsonPlace voxels = place.member("voxels");
  for (std::size_t i = 0; i < voxels.elements(); ++i) voi.voxels.push_back(voxelOf(voxels.element(i)));
  if (voi.voxels.empty()) voxels.fail("the region has no voxels", "Give at least one");
  return voi;
}

std::string voxelText(const VoxelIndex& voxel) {
  return fmt::format("[{}, {}, {}]", voxel[0], voxel[1], voxel[2]);
}

// Voxel indices by label, in file order; background left out.
std::map<std::int32_t, std::vector<VoxelIndex>> voxelsByLabel(const LabelImage& image) {
  std::map<std::int32_t, std::vector<VoxelIndex>> found;
  std::size_t at = 0;
  for (int z = 0; z < image.header.size.z; ++z) {
    for (int y = 0; y < image.header.size.y; ++y) {
      for (int x = 0; x < image.header.size.x; ++x) {
        const std::int32_t label = image.labels[at++];
        if (label != 0) found[label].push_back({x, y, z});
      }
    }
  }
  return found;
}

}  // namespace

VoiList readVoiJson(const std::string& path) {
  return parseVoiJson(readTextFile(path), path);
}

VoiList parseVoiJson(const std::string& text, const std::string& path) {
  const Json document = parseJson(text, path);
  const JsonPlace root(document, path);
  root.allowOnly({"talairach", "vois"});
  VoiList list;
  if (root.has("talairach")) list.talairach = root.member("talairach").boolean();
  const JsonPlace vois = root.member("vois");
  for (std::size_t i = 0; i < vois.elements(); ++i) list.vois.push_back(voiOf(vois.element(i)));
  if (list.vois.empty()) vois.fail("the list has no regions", "Give at least one");
  return list;
}

// One voxel per line, for people who compare lists.
void writeVoiJson(const std::string& path, const VoiList& list) {
  std::string text =
      fmt::format("{{\n  \"talairach\": {},\n  \"vois\": [", list.talairach ? "true" : "false");
  for (std::size_t v = 0; v < list.vois.size(); ++v) {
    text += fmt::format("{}    {{\"name\": {}, \"voxels\": [", v == 0 ? "\n" : ",\n",
                        Json(list.vois[v].name).dump(-1, ' ', false, Json::error_handler_t::replace));
    for (std::size_t i = 0; i < list.vois[v].voxels.size(); ++i) {
      text += (i == 0 ? "\n      " : ",\n      ") + voxelText(list.vois[v].voxels[i]);
    }
    text += "]}";
  }
  writeTextFile(path, text + "\n  ]\n}\n");
}

LabelVois voisFromLabels(const LabelImage& image, const LabelTable& table) {
  LabelVois result;
  auto found = voxelsByLabel(image);
  for (auto& [index, voxels] : found) {
    if (table.find(index) == nullptr) result.unnamed.push_back(index);
    result.list.vois.push_back({table.nameOf(index), std::move(voxels)});
  }
  for (const auto& label : table.labels) {
    if (found.count(label.index) == 0) result.absent.push_back(label);
  }
  return result;
}

LabelVois loadVois(const std::string& path, const std::string& tablePath) {
  if (path.ends_with(".json")) return {readVoiJson(path), {}, {}};
  const std::string table = tablePath.empty() ? labelTableBeside(path) : tablePath;
  return voisFromLabels(readLabelImage(path), table.empty() ? LabelTable{} : readLabelTable(table));
}

}  // namespace formats
