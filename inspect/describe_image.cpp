#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "formats/json_affine.h"
#include "formats/label_table.h"
#include "formats/nifti.h"
#include "formats/nifti_stream.h"
#include "formats/voi_list.h"
#include "formats/vtc_export.h"
#include "formats/vtc_sidecar.h"
#include "inspect/describe.h"
#include "io/cnvtcfile.h"

namespace inspect {
namespace {

using formats::ImageHeader;
using formats::Json;

void addPlace(const formats::Affine& affine, Json& json) {
  const formats::Point voxel = formats::voxelSize(affine);
  json["voxel_size_mm"] = {voxel[0], voxel[1], voxel[2]};
  json["affine"] = formats::affineToJson(affine);
}

struct ValueRange {
  double least = std::numeric_limits<double>::infinity(), largest = -least;
  std::size_t notFinite = 0;
  bool whole = true;

  void add(const std::vector<float>& values) {
    for (const float value : values) {
      if (!std::isfinite(value)) {
        ++notFinite;
        continue;
      }
      least = std::min(least, static_cast<double>(value));
      largest = std::max(largest, static_cast<double>(value));
      whole = whole && value == std::nearbyint(value);
    }
  }
};

ValueRange rangeOf(formats::NiftiStream& stream) {
  ValueRange range;
  std::vector<float> volume(stream.header().size.voxels());
  for (int t = 0; t < stream.header().volumes; ++t) {
    stream.readValues(volume.data(), volume.size());
    range.add(volume);
  }
  stream.finish();
  return range;
}

Json headerJson(const std::string& path, const ImageHeader& header) {
  Json json{{"file", path}, {"kind", header.volumes > 1 ? "time series" : "image"}};
  json["voxels"] = {header.size.x, header.size.y, header.size.z};
  if (header.volumes > 1) json["volumes"] = header.volumes;
  if (header.volumes > 1) json["tr_ms"] = header.trMs > 0 ? Json(header.trMs) : Json(nullptr);
  json["data_type"] = formats::nameOf(header.dataType);
  if (header.slope != 1 || header.intercept != 0)
    json["slope_and_intercept"] = {header.slope, header.intercept};
  json["sform_code"] = header.sformCode;
  json["qform_code"] = header.qformCode;
  addPlace(header.affine, json);
  return json;
}

// A label image says so by its intent code or its name; of others one cannot know.
bool isLabelImage(const std::string& path, const ImageHeader& header, const DescribeOptions& options) {
  return header.volumes == 1 &&
         (header.intentCode == formats::kLabelIntent || !options.tablePath.empty() ||
          !formats::labelTableBeside(path).empty() || path.find("dseg") != std::string::npos);
}

void addRegions(const std::string& path, const DescribeOptions& options, Json& json) {
  const formats::LabelVois vois = formats::loadVois(path, options.tablePath);
  json["kind"] = "label image";
  json["regions"] = Json::array();
  for (const auto& voi : vois.list.vois)
    json["regions"].push_back({{"name", voi.name}, {"voxels", voi.voxels.size()}});
  if (!vois.unnamed.empty()) json["labels_without_name"] = vois.unnamed;
  for (const auto& label : vois.absent) json["names_without_voxels"].push_back(label.name);
}

}  // namespace

Json describeImage(const std::string& path, const DescribeOptions& options) {
  formats::NiftiStream stream(path);
  Json json = headerJson(path, stream.header());
  const ValueRange range = rangeOf(stream);
  if (range.least <= range.largest) json["value_range"] = {range.least, range.largest};
  if (range.notFinite > 0) json["values_not_finite"] = range.notFinite;
  if (range.whole && isLabelImage(path, stream.header(), options)) addRegions(path, options, json);
  return json;
}

Json describeVtc(const std::string& path) {
  const VTC_Header header = formats::readVtcFileHeader(path);
  const io::GridSize grid = gridOf(header);
  Json json{{"file", path}, {"kind", "VTC"}};
  json["voxels"] = {grid.x, grid.y, grid.z};
  json["volumes"] = header.nrOfVolumes;
  json["tr_ms"] = header.tr;
  json["data_type"] = header.dataType == kVtcFloatData ? "float32" : "uint16";
  json["box"] = {{"x", {header.xStart, header.xEnd}},
                 {"y", {header.yStart, header.yEnd}},
                 {"z", {header.zStart, header.zEnd}}};
  json["resolution"] = header.resolution;
  json["source"] = std::string(header.sourceFileName);
  if (header.nrOfLinkedProtocols > 0) json["protocol"] = std::string(header.protocolName);
  if (const auto sidecar = formats::readVtcSidecar(path)) {
    json["mask"] = sidecar->mask.empty() ? Json(nullptr) : Json(sidecar->mask);
    if (sidecar->scale != 1) json["scale"] = sidecar->scale;
    json["shift"] = sidecar->shift;
  } else {
    json["place"] = fmt::format("Talairach space (there is no {})", formats::sidecarPathOf(path));
  }
  addPlace(formats::placeOf(path, header).affine, json);
  return json;
}

}  // namespace inspect
