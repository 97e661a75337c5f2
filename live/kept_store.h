// Maps in memory that the next run writes over.
#ifndef TAVMAP_LIVE_KEPT_STORE_H
#define TAVMAP_LIVE_KEPT_STORE_H

#include <string>
#include <vector>

#include "tav/map_store.h"

namespace live {

// Lends out the caller's memory, which outlives it and grows as needed; saves nothing.
class KeptStore : public tav::MapStore {
 public:
  explicit KeptStore(std::vector<std::vector<float>>& maps) : maps_(maps) {}

  int discard() override { return 1; }
  [[nodiscard]] bool create(const tav::MapSetShape& shape, std::ostream& errors) override;
  [[nodiscard]] float* values(int map) override { return maps_[static_cast<std::size_t>(map)].data(); }
  void describe(int /*map*/, const tav::MapHeader& /*header*/) override {}
  void saveMaps(const std::string& /*path*/) override {}
  [[nodiscard]] std::string saveLog(const std::string& /*path*/, const std::string& /*text*/) override {
    return "";
  }

 private:
  std::vector<std::vector<float>>& maps_;
};

}  // namespace live

#endif
