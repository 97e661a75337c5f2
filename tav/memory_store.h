// A map set in memory, for runs whose results are looked at while they run, and as a base of stores
// that write files.
#ifndef TAVMAP_TAV_MEMORY_STORE_H
#define TAVMAP_TAV_MEMORY_STORE_H

#include "tav/map_store.h"

namespace tav {

class MemoryStore : public MapStore {
 public:
  struct Map {
    MapHeader header;           // its thresholds: one per name of the set, 0 for a map without any
    std::vector<float> values;  // zeros at first
  };

  int discard() override;
  [[nodiscard]] bool create(const MapSetShape& shape, std::ostream& errors) override;
  [[nodiscard]] float* values(int map) override;
  void describe(int map, const MapHeader& header) override;
  // Save nothing.
  void saveMaps(const std::string& path) override;
  [[nodiscard]] std::string saveLog(const std::string& path, const std::string& text) override;

  [[nodiscard]] const MapSetShape& shape() const { return shape_; }
  // None behind discard().
  [[nodiscard]] const std::vector<Map>& maps() const { return maps_; }

 private:
  MapSetShape shape_{};
  std::vector<Map> maps_;
};

}  // namespace tav

#endif
