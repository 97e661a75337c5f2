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

std::string percent(double share) {
  return fmt::format("{:.{}f} %", 100 * share, share < 0.1 ? 1 : 0);
}

// Collects voxels of one region and counts those that the mask refuses.
class Collector {
 public:
  Collector(std::string name, const RegionSpace& space, const Reach& reach = {})
      : space_(space), reach_(reach) {
    region_.name = std::move(name);
  }

  void add(std::size_t index) {
    ++seen_;
    const bool outside = !space_.mask.empty() && !space_.mask[index];
    outside_ += outside ? 1 : 0;
    if (outside && space_.insideMaskOnly) return;
    for (const int c : space_.grid.size.voxelAt(index)) region_.coordinates.push_back(c);
  }

  // Nothing is left, or nearly nothing.
  [[nodiscard]] bool isTooLittle() const { return empty() || shareUsed() < kLeastShareOfRegion; }

  // Throws when too little is left.
  Region finish(const std::string& where) {
    const std::string lost = whatIsLost();
    if (empty()) {
      throw InputError(fmt::format("{}: reference '{}' has no voxel {}", where, region_.name,
                                   seen_ > 0 ? "inside the mask" : "in the grid of the runs"));
    }
    if (isTooLittle()) {
      throw InputError(
          fmt::format("{}: reference '{}': {}; the {} that is left does not stand for it, take another "
                      "reference or runs and a mask that hold at least {} of it",
                      where, region_.name, lost, percent(shareUsed()), percent(kLeastShareOfRegion)));
    }
    if (!lost.empty()) region_.notes.push_back(fmt::format("reference '{}': {}", region_.name, noteOf(lost)));
    return std::move(region_);
  }

 private:
  [[nodiscard]] bool empty() const { return region_.coordinates.empty() || seen_ == outside_; }
  [[nodiscard]] double shareUsed() const {
    return reach_.shareInside() * static_cast<double>(region_.voxels()) / std::max(1, seen_);
  }
  [[nodiscard]] std::string whatIsLost() const {
    std::string text;
    if (reach_.beyond > 0)
      text = fmt::format("{} of {} voxels lie outside the grid of the runs", reach_.beyond, reach_.voxels);
    if (outside_ > 0) {
      text += fmt::format("{}{} of {} voxels{} lie outside the mask", text.empty() ? "" : ", and ", outside_,
                          seen_, text.empty() ? "" : " inside it");
    }
    return text;
  }
  [[nodiscard]] std::string noteOf(const std::string& lost) const {
    if (outside_ > 0 && !space_.insideMaskOnly) return lost;
    return fmt::format("{} and are left out; {} of it is used", lost, percent(shareUsed()));
  }

  const RegionSpace& space_;
  Reach reach_;
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
                     const RegionSpace& space, const Reach& reach, const std::string& where) {
  Collector collector(name, space, reach);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i] == value) collector.add(i);
  }
  Region region = collector.finish(where);
  region.source.label = value;
  return region;
}

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

Reach reachOf(const std::map<std::int32_t, Reach>& reaches, std::int32_t value) {
  const auto found = reaches.find(value);
  return found == reaches.end() ? Reach{} : found->second;
}

// An atlas may reach beyond the runs: regions of which too little is left are left out, with a note.
std::vector<Region> allRegions(const LabelVolume& image, const std::vector<std::int32_t>& labels,
                               const std::set<std::int32_t>& present, const RegionSpace& space,
                               const std::string& where) {
  // One pass for all: an atlas has hundreds of labels, and every worker looks again.
  const std::map<std::int32_t, Reach> reaches = reachOfLabels(image, space.grid);
  std::map<std::int32_t, Collector> collectors;
  for (const std::int32_t value : present)
    collectors.emplace(value, Collector(labelName(image, value), space, reachOf(reaches, value)));
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i] != 0) collectors.at(labels[i]).add(i);
  }
  std::vector<Region> regions;
  std::string missing;
  for (auto& [value, collector] : collectors) {
    if (collector.isTooLittle())
      missing += (missing.empty() ? "" : ", ") + labelName(image, value);
    else
      regions.push_back(collector.finish(where)), regions.back().source.label = value;
  }
  if (regions.empty())
    throw InputError(fmt::format("{}: no label of {} has {} of its voxels inside the mask", where, image.file,
                                 percent(kLeastShareOfRegion)));
  if (!missing.empty()) {
    regions[0].notes.push_back(fmt::format("labels of which the runs hold less than {}, left out: {}",
                                           percent(kLeastShareOfRegion), missing));
  }
  return regions;
}

Reach together(const std::map<std::int32_t, Reach>& reaches) {
  Reach sum;
  for (const auto& [value, reach] : reaches) sum.voxels += reach.voxels, sum.beyond += reach.beyond;
  return sum;
}

std::string gridText(const Grid& grid) {
  const formats::Point mm = formats::voxelSize(grid.affine);
  return fmt::format("{} voxels of {:.4g} x {:.4g} x {:.4g} mm", toText(grid.size), mm[0], mm[1], mm[2]);
}

void setSource(const ReferenceRequest& request, const LabelVolume& image, const RegionSpace& space,
               Region& region) {
  RegionSource& source = region.source;
  source.kind = request.kind;
  source.image = image.file;
  source.table = image.table;
  source.rule = image.rule;
  source.grid = gridText(image.grid);
  source.isResampled = !sameGrid(image.grid, space.grid);
  const auto found = image.names.find(source.label);
  if (found != image.names.end()) source.labelName = found->second;
}

void noteResampling(Region& region) {
  if (!region.source.isResampled) return;
  region.notes.push_back(region.source.image.filename().string() +
                         " has another grid than the runs: each voxel takes the label at its centre");
}

}  // namespace

std::vector<Region> labelRegions(const ReferenceRequest& request, const LabelVolume& image,
                                 const RegionSpace& space, const std::string& where) {
  const std::set<std::int32_t> present = valuesIn(image.labels);
  const std::vector<std::int32_t> labels = labelsOnGrid(image, space.grid);
  std::vector<Region> regions;
  if (request.allLabels) regions = allRegions(image, labels, present, space, where);
  const auto reaches =
      request.labels.empty() ? std::map<std::int32_t, Reach>{} : reachOfLabels(image, space.grid);
  for (const std::string& label : request.labels) {
    const std::int32_t value = valueOf(label, image, present, where);
    const std::string name = request.name.empty() ? labelName(image, value) : request.name;
    regions.push_back(regionOfValue(name, value, labels, space, reachOf(reaches, value), where));
  }
  for (Region& region : regions) {
    setSource(request, image, space, region);
    noteResampling(region);
    if (!image.question.empty()) region.notes.push_back(image.question);
  }
  return regions;
}

Region maskRegion(const ReferenceRequest& request, const LabelVolume& image, const RegionSpace& space,
                  const std::string& where) {
  const std::vector<std::int32_t> values = labelsOnGrid(image, space.grid);
  Collector collector(request.name, space, together(reachOfLabels(image, space.grid)));
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] != 0) collector.add(i);
  }
  Region region = collector.finish(where);
  setSource(request, image, space, region);
  noteResampling(region);
  return region;
}

Region sphereRegion(const ReferenceRequest& request, const RegionSpace& space, const std::string& where) {
  Collector collector(request.name, space, reachOfSphere(request.centreMm, request.radiusMm, space.grid));
  for (const std::size_t voxel : voxelsInSphere(request.centreMm, request.radiusMm, space.grid))
    collector.add(voxel);
  Region region = collector.finish(where);
  region.source.kind = ReferenceKind::kSphere;
  region.source.centreMm = request.centreMm;
  region.source.radiusMm = request.radiusMm;
  return region;
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
