// Where the results of a run go: whoever runs the engine holds them.
#ifndef TAVMAP_TAV_MAP_STORE_H
#define TAVMAP_TAV_MAP_STORE_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "tav/map_kinds.h"

namespace tav {

// The box of the maps in anatomical coordinates, ends exclusive, and the edge of a cell.
struct MapBox {
  std::int32_t xStart, xEnd, yStart, yEnd, zStart, zEnd;
  std::int32_t resolution;
};

struct MapSetShape {
  int nrOfMaps;  // at least 1
  MapBox box;
  std::vector<std::string> thresholdNames;  // one per threshold of a map
};

// By which number hosts and map files know maps of directed influence.
inline constexpr std::int32_t kDirectedInfluence = 101;

// How a map is named and shown.
struct MapHeader {
  std::string name;
  float lowerThreshold = 0, upperThreshold = 0;  // display range
  MapColours positive{}, negative{};
  std::vector<float> thresholds;  // by ascending q; empty for a map without any
};

// Holds the map set of one reference at a time. A run calls, for each reference, discard() and create();
// for each map, in ascending order, values(), fills what it gets, and describe() (on several threads the
// values of all maps of a condition, then describe() of each); then saveMaps() and saveLog(); and discard()
// at its end. All on the thread of the run. Exceptions end the run.
class MapStore {
 public:
  virtual ~MapStore() = default;
  // Deletes the map set, if there is one. 1 on success; the run passes other results on.
  virtual int discard() = 0;
  // False, with the reason in `errors`, when it cannot be made.
  [[nodiscard]] virtual bool create(const MapSetShape& shape, std::ostream& errors) = 0;
  // Where the map's values go, [z][y][x]; null when there is no such map. Valid until discard().
  [[nodiscard]] virtual float* values(int map) = 0;
  // Of a map whose values were asked for: on one thread, last.
  virtual void describe(int map, const MapHeader& header) = 0;
  // Saves the set; failures are the store's to report.
  virtual void saveMaps(const std::string& path) = 0;
  // Saves the text of the reference's log. Empty on success, otherwise the reason.
  [[nodiscard]] virtual std::string saveLog(const std::string& path, const std::string& text) = 0;
};

}  // namespace tav

#endif
