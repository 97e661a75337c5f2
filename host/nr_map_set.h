// The map set of the current anatomy ("NR maps") in the memory that plug-ins write into.
//
// Values are [z][y][x] floats over the bounding box, (end - start) / resolution cells an axis;
// all memory lent out stays valid until the set is deleted.
#ifndef TAVMAP_HOST_NR_MAP_SET_H
#define TAVMAP_HOST_NR_MAP_SET_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/lent_array.h"
#include "hostapi/zq_records.h"

namespace host {

// A box in anatomical coordinates, ends exclusive, and the edge of a cell.
struct Box {
  std::array<std::int32_t, 3> start, end;
  std::int32_t resolution;

  bool operator==(const Box&) const = default;
  // Cells along an axis (0: x, 1: y, 2: z).
  [[nodiscard]] int cells(std::size_t axis) const { return (end[axis] - start[axis]) / resolution; }
  [[nodiscard]] std::size_t nrOfCells() const;
  // Why this is no box to make maps for; empty when it is one.
  [[nodiscard]] std::string problem() const;
};

[[nodiscard]] Box boxOf(const NR_VMPs_Header& header);
[[nodiscard]] Box boxOf(const VTC_Header& header);

class MapSet {
 public:
  struct Map {
    NR_VMP_Header header{};  // its threshold table is `thresholds`
    LentArray<float> values;
    LentArray<float> thresholds;
  };

  // Maps of zeros with empty names. The box must have no problem.
  MapSet(const Box& box, int nrOfMaps, int nrOfThresholds);
  MapSet(const MapSet&) = delete;
  MapSet& operator=(const MapSet&) = delete;

  [[nodiscard]] const Box& box() const { return box_; }
  [[nodiscard]] std::size_t nrOfThresholds() const { return names_.size(); }
  std::vector<Map>& maps() { return maps_; }
  [[nodiscard]] const std::vector<Map>& maps() const { return maps_; }

  NR_VMPs_Header header();
  [[nodiscard]] std::string thresholdName(std::size_t index) const;
  void setThresholdName(std::size_t index, const std::string& name);

  // Which lent memory was written beyond its end, or holds a text without one; empty when none.
  [[nodiscard]] std::string damage() const;

 private:
  Box box_;
  std::vector<LentArray<char>> names_;
  std::vector<char*> namePointers_;
  std::vector<Map> maps_;
};

}  // namespace host

#endif
