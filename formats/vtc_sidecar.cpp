#include "formats/vtc_sidecar.h"

#include <filesystem>

#include "formats/atomic_file.h"
#include "formats/json_affine.h"
#include "formats/json_file.h"

namespace formats {
namespace {

double scaleOf(const JsonPlace& at) {
  const double scale = at.number();
  if (!(scale > 0)) at.fail("a number above 0 is expected", "Make the file again");
  return scale;
}

}  // namespace

std::string sidecarPathOf(const std::string& vtcPath) {
  return vtcPath + ".json";
}

std::optional<VtcSidecar> readVtcSidecar(const std::string& vtcPath) {
  const std::string path = sidecarPathOf(vtcPath);
  if (!std::filesystem::exists(path)) return std::nullopt;
  return parseVtcSidecar(readTextFile(path), path);
}

VtcSidecar parseVtcSidecar(const std::string& text, const std::string& path) {
  const Json document = parseJson(text, path);
  const JsonPlace root(document, path);
  VtcSidecar sidecar;
  sidecar.affine = affineFromJson(root.member("affine"));
  sidecar.spaceCode = root.member("space_code").integer();
  sidecar.source = root.member("source").text();
  if (!root.member("mask").value().is_null()) sidecar.mask = root.member("mask").text();
  sidecar.trMs = root.member("tr_ms").number();
  if (root.has("scale")) sidecar.scale = scaleOf(root.member("scale"));
  sidecar.shift = root.member("shift").number();
  sidecar.threshold = root.member("threshold").number();
  return sidecar;
}

std::string encodeVtcSidecar(const VtcSidecar& sidecar) {
  const Point voxel = voxelSize(sidecar.affine);
  Json document;
  document["affine"] = affineToJson(sidecar.affine);
  document["space_code"] = sidecar.spaceCode;
  document["voxel_size_mm"] = {voxel[0], voxel[1], voxel[2]};
  document["source"] = sidecar.source;
  document["mask"] = sidecar.mask.empty() ? Json(nullptr) : Json(sidecar.mask);
  document["tr_ms"] = sidecar.trMs;
  if (sidecar.scale != 1) document["scale"] = sidecar.scale;
  document["shift"] = sidecar.shift;
  document["threshold"] = sidecar.threshold;
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void writeVtcSidecar(const std::string& vtcPath, const VtcSidecar& sidecar) {
  writeTextFile(sidecarPathOf(vtcPath), encodeVtcSidecar(sidecar));
}

}  // namespace formats
