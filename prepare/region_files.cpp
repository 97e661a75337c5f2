#include "prepare/region_files.h"

#include <fmt/core.h>

#include <set>

#include "bids/bids_names.h"
#include "formats/nifti.h"
#include "prepare/label_files.h"
#include "request/problem.h"

namespace study {
namespace {

std::string placeOf(const Request& request, const ReferenceRequest& reference) {
  return request.title + (reference.line > 0 ? ":" + std::to_string(reference.line) : "");
}

std::vector<Region> readOne(const ReferenceRequest& reference, const RegionSpace& space,
                            const std::string& where) {
  switch (reference.kind) {
    case ReferenceKind::kLabels:
      return labelRegions(reference, readLabels(reference, where), space, where);
    case ReferenceKind::kMask:
      return {maskRegion(reference, readMask(reference), space, where)};
    case ReferenceKind::kSphere:
      return {sphereRegion(reference, space, where)};
    case ReferenceKind::kVoxels:
      return {voxelRegion(reference, space, where)};
  }
  return {};
}

// An atlas and runs whose names state different spaces may still overlap by accident.
void noteSpaces(const Request& request, const ReferenceRequest& reference, std::vector<Region>& regions) {
  if (reference.image.empty()) return;
  const std::string file = reference.image.filename().string();
  const std::string own = parseBidsName(file).get("space");
  const std::string theirs = parseBidsName(request.runs[0].bold.filename().string()).get("space");
  if (own == theirs) return;
  std::string note = fmt::format("{} names space '{}', the runs '{}'; regions may lie in the wrong place",
                                 file, own, theirs);
  if (own.empty() || theirs.empty()) {
    note = fmt::format(
        "{} 'space-' in {} name, but '{}' in that of {}: nothing says that both lie in the same "
        "space; make sure, or regions lie in the wrong place",
        own.empty() ? file + " has no" : "the runs have no", own.empty() ? "its" : "their",
        own.empty() ? theirs : own, own.empty() ? "the runs" : file);
  }
  for (Region& region : regions) region.notes.push_back(note);
}

}  // namespace

RegionSpace regionSpace(const std::vector<RunPlan>& runs, Method method) {
  RegionSpace space{runs[0].grid, {}, method == Method::kCalibrated};
  for (const RunPlan& run : runs) {
    if (run.request.mask.empty()) continue;
    const formats::Image3D mask = formats::readImage(run.request.mask.string());
    if (space.mask.empty()) space.mask.assign(mask.values.size(), true);
    for (std::size_t i = 0; i < mask.values.size(); ++i) space.mask[i] = space.mask[i] && mask.values[i] != 0;
  }
  return space;
}

std::vector<Region> readRegions(const Request& request, const RegionSpace& space) {
  std::vector<Region> regions;
  std::set<std::string> names;
  for (const ReferenceRequest& reference : request.references) {
    const std::string where = placeOf(request, reference);
    std::vector<Region> found = readOne(reference, space, where);
    noteSpaces(request, reference, found);
    for (Region& region : found) {
      if (!names.insert(region.name).second) {
        throw InputError(
            fmt::format("{}: two references are named '{}'; their results would overwrite each other, give "
                        "one another 'name'",
                        where, region.name));
      }
      regions.push_back(std::move(region));
    }
  }
  return regions;
}

}  // namespace study
