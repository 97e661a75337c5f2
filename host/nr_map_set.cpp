#include "host/nr_map_set.h"

#include <fmt/core.h>

#include <cstring>

#include "host/fields.h"

namespace host {

std::size_t Box::nrOfCells() const {
  return static_cast<std::size_t>(cells(0)) * static_cast<std::size_t>(cells(1)) *
         static_cast<std::size_t>(cells(2));
}

std::string Box::problem() const {
  constexpr std::int64_t kMaxCells = 2048;  // an axis; more is no brain
  if (resolution < 1) return "the resolution is " + std::to_string(resolution);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::int64_t extent = std::int64_t{end[axis]} - start[axis];
    if (extent < resolution || extent / resolution > kMaxCells)
      return std::string("the bounding box has no proper extent along ") + "xyz"[axis];
  }
  return {};
}

Box boxOf(const NR_VMPs_Header& header) {
  return {{header.xStart, header.yStart, header.zStart},
          {header.xEnd, header.yEnd, header.zEnd},
          header.resolution};
}

Box boxOf(const VTC_Header& header) {
  return {{header.xStart, header.yStart, header.zStart},
          {header.xEnd, header.yEnd, header.zEnd},
          header.resolution};
}

MapSet::MapSet(const Box& box, int nrOfMaps, int nrOfThresholds) : box_(box) {
  for (int i = 0; i < nrOfThresholds; ++i) names_.emplace_back(static_cast<std::size_t>(kThresholdNameBytes));
  for (LentArray<char>& name : names_) namePointers_.push_back(name.data());
  for (int i = 0; i < nrOfMaps; ++i) {
    Map& map = maps_.emplace_back();
    map.values = LentArray<float>(box.nrOfCells());
    map.thresholds = LentArray<float>(names_.size());
    map.header.fdrThresholds = map.thresholds.data();
  }
}

NR_VMPs_Header MapSet::header() {
  NR_VMPs_Header header{};
  header.nrOfMaps = static_cast<std::int32_t>(maps_.size());
  header.nrOfFDRThresholds = static_cast<std::int32_t>(names_.size());
  header.xStart = box_.start[0], header.xEnd = box_.end[0];
  header.yStart = box_.start[1], header.yEnd = box_.end[1];
  header.zStart = box_.start[2], header.zEnd = box_.end[2];
  header.resolution = box_.resolution;
  header.fdrThresholdNames = namePointers_.data();
  return header;
}

std::string MapSet::thresholdName(std::size_t index) const {
  return std::string(names_[index].data(), strnlen(names_[index].data(), names_[index].size()));
}

void MapSet::setThresholdName(std::size_t index, const std::string& name) {
  fillField(name, names_[index].data(), names_[index].size());
}

std::string MapSet::damage() const {
  for (std::size_t i = 0; i < names_.size(); ++i) {
    const bool ends = std::memchr(names_[i].data(), 0, names_[i].size()) != nullptr;
    if (!names_[i].intact() || !ends || namePointers_[i] != names_[i].data())
      return fmt::format("the name of threshold {} was written beyond its {} bytes", i, kThresholdNameBytes);
  }
  for (std::size_t i = 0; i < maps_.size(); ++i) {
    if (!maps_[i].values.intact()) return "values were written outside map " + std::to_string(i);
    if (!maps_[i].thresholds.intact())
      return "thresholds were written outside the table of map " + std::to_string(i);
  }
  return {};
}

}  // namespace host
