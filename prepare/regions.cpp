#include "prepare/regions.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <set>

#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

using Voxel = std::array<int, 3>;

// Collects voxels of one region and counts those that the mask refuses.
class Collector {
 public:
  Collector(std::string name, const RegionSpace& space) : space_(space) { region_.name = std::move(name); }

  void add(std::size_t index) {
    ++seen_;
    const bool outside = !space_.mask.empty() && !space_.mask[index];
    outside_ += outside ? 1 : 0;
    if (outside && space_.insideMaskOnly) return;
    for (const int c : space_.grid.size.voxelAt(index)) region_.coordinates.push_back(c);
  }

  bool empty() const { return region_.coordinates.empty() || seen_ == outside_; }

  // Throws when nothing is left.
  Region finish(const std::string& where) {
    if (empty()) {
      throw InputError(fmt::format("{}: reference '{}' has no voxel {}", where, region_.name,
                                   seen_ > 0 ? "inside the mask" : "in the grid of the runs"));
    }
    if (outside_ > 0) {
      region_.notes.push_back(fmt::format("reference '{}': {} of {} voxels lie outside the mask{}",
                                          region_.name, outside_, seen_,
                                          space_.insideMaskOnly ? " and are left out" : ""));
    }
    return std::move(region_);
  }

 private:
  const RegionSpace& space_;
  Region region_;
  int seen_ = 0, outside_ = 0;
};

std::vector<std::string> knownLabels(const LabelVolume& image, const std::set<std::int32_t>& present) {
  std::vector<std::string> known;
  for (const auto& [value, name] : image.names) known.push_back(name);
  if (known.empty()) {
    for (const std::int32_t value : present) known.push_back(std::to_string(value));
  }
  return known;
}

// The value that a text asks for: a name of the table, else a number.
std::int32_t valueOf(const std::string& label, const LabelVolume& image,
                     const std::set<std::int32_t>& present, const std::string& where) {
  std::vector<std::int32_t> matches;
  for (const auto& [value, name] : image.names) {
    if (name == label) matches.push_back(value);
  }
  if (matches.size() > 1) {
    throw InputError(fmt::format("{}: {} has {} labels named '{}'; name them by index", where, image.file,
                                 matches.size(), label));
  }
  if (matches.size() == 1) return matches[0];
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(label.data(), label.data() + label.size(), value);
  const bool number = error == std::errc() && end == label.data() + label.size();
  if (number && (present.count(value) > 0 || image.names.count(value) > 0) && value != 0) return value;
  throw InputError(fmt::format("{}: no label '{}' in {}{}", where, label, image.file,
                               suggestion(label, knownLabels(image, present))));
}

Region regionOfValue(const std::string& name, std::int32_t value, const std::vector<std::int32_t>& labels,
                     const RegionSpace& space, const std::string& where) {
  Collector collector(name, space);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i] == value) collector.add(i);
  }
  return collector.finish(where);
}

// An atlas may reach beyond the runs: regions without a voxel are left out, with a note.
// All but 0. Neighbours mostly share their label.
std::set<std::int32_t> valuesIn(const std::vector<std::int32_t>& labels) {
  std::set<std::int32_t> values;
  std::int32_t last = 0;
  for (const std::int32_t value : labels) {
    if (value != last && value != 0) values.insert(value);
    last = value;
  }
  return values;
}

std::vector<Region> allRegions(const LabelVolume& image, const std::vector<std::int32_t>& labels,
                               const std::set<std::int32_t>& present, const RegionSpace& space,
                               const std::string& where) {
  // One pass for all: an atlas has hundreds of labels, and every worker looks again.
  std::map<std::int32_t, Collector> collectors;
  for (const std::int32_t value : present)
    collectors.emplace(value, Collector(labelName(image, value), space));
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i] != 0) collectors.at(labels[i]).add(i);
  }
  std::vector<Region> regions;
  std::string missing;
  for (auto& [value, collector] : collectors) {
    if (collector.empty())
      missing += (missing.empty() ? "" : ", ") + labelName(image, value);
    else
      regions.push_back(collector.finish(where));
  }
  if (regions.empty())
    throw InputError(fmt::format("{}: no label of {} has a voxel inside the mask", where, image.file));
  if (!missing.empty())
    regions[0].notes.push_back("labels without a voxel in the runs, left out: " + missing);
  return regions;
}

}  // namespace

std::string labelName(const LabelVolume& image, std::int32_t value) {
  const auto found = image.names.find(value);
  return found == image.names.end() ? "label" + std::to_string(value) : found->second;
}

std::vector<std::int32_t> labelsOnGrid(const LabelVolume& image, const Grid& grid) {
  if (sameGrid(image.grid, grid)) return image.labels;
  std::vector<std::int32_t> labels(grid.size.voxels(), 0);
  if (formats::determinant(image.grid.affine) == 0) {
    throw InputError(image.file + ": its affine cannot be inverted; the header is damaged");
  }
  const formats::Affine toImage = formats::inverse(image.grid.affine);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const auto at = formats::apply(toImage, grid.toMm(grid.size.voxelAt(i)));
    const Voxel voxel = {static_cast<int>(std::floor(at[0] + 0.5)), static_cast<int>(std::floor(at[1] + 0.5)),
                         static_cast<int>(std::floor(at[2] + 0.5))};
    if (image.grid.size.contains(voxel)) labels[i] = image.labels[image.grid.size.index(voxel)];
  }
  return labels;
}

std::vector<Region> labelRegions(const ReferenceRequest& request, const LabelVolume& image,
                                 const RegionSpace& space, const std::string& where) {
  const std::set<std::int32_t> present = valuesIn(image.labels);
  const std::vector<std::int32_t> labels = labelsOnGrid(image, space.grid);
  std::vector<Region> regions;
  if (request.allLabels) {
    regions = allRegions(image, labels, present, space, where);
  }
  for (const std::string& label : request.labels) {
    const std::int32_t value = valueOf(label, image, present, where);
    const std::string name = request.name.empty() ? labelName(image, value) : request.name;
    regions.push_back(regionOfValue(name, value, labels, space, where));
  }
  if (!sameGrid(image.grid, space.grid)) {
    regions[0].notes.push_back(image.file +
                               " has another grid than the runs: each voxel takes the label at its centre");
  }
  return regions;
}

Region maskRegion(const ReferenceRequest& request, const LabelVolume& image, const RegionSpace& space,
                  const std::string& where) {
  const std::vector<std::int32_t> values = labelsOnGrid(image, space.grid);
  Collector collector(request.name, space);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] != 0) collector.add(i);
  }
  return collector.finish(where);
}

Region sphereRegion(const ReferenceRequest& request, const RegionSpace& space, const std::string& where) {
  Collector collector(request.name, space);
  for (std::size_t i = 0; i < space.grid.size.voxels(); ++i) {
    const auto mm = space.grid.toMm(space.grid.size.voxelAt(i));
    double squares = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      squares += (mm[axis] - request.centreMm[axis]) * (mm[axis] - request.centreMm[axis]);
    }
    if (squares <= request.radiusMm * request.radiusMm) collector.add(i);
  }
  return collector.finish(where);
}

Region voxelRegion(const ReferenceRequest& request, const RegionSpace& space, const std::string& where) {
  Collector collector(request.name, space);
  for (const Voxel& voxel : request.voxels) {
    if (!space.grid.size.contains(voxel)) {
      throw InputError(fmt::format(
          "{}: voxel [{}, {}, {}] of reference '{}' lies outside the grid of {} voxels (counted from 0)",
          where, voxel[0], voxel[1], voxel[2], request.name, toText(space.grid.size)));
    }
    collector.add(space.grid.size.index(voxel));
  }
  return collector.finish(where);
}

}  // namespace study
