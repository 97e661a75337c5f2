// The engine's results and texts in the host: its map set of the current anatomy, the log beside the
// saved maps, the log pane. The host's operations must be bound.
#ifndef TAVMAP_PLUGIN_HOST_STORE_H
#define TAVMAP_PLUGIN_HOST_STORE_H

#include "hostapi/zq_records.h"
#include "tav/map_store.h"
#include "tav/run_observer.h"

class HostStore : public tav::MapStore {
 public:
  int discard() override;
  [[nodiscard]] bool create(const tav::MapSetShape& shape, std::ostream& errors) override;
  [[nodiscard]] float* values(int map) override;
  // Names longer than the host's field are cut. The host's thresholds of a map without any stay as they
  // are.
  void describe(int map, const tav::MapHeader& header) override;
  // The host reports its own failures.
  void saveMaps(const std::string& path) override;
  [[nodiscard]] std::string saveLog(const std::string& path, const std::string& text) override;

 private:
  NR_VMP_Header header_{};  // of the map whose values were asked for last
};

// Lines as the engine gives them, into the log pane.
class HostLog : public tav::RunObserver {
 public:
  void onLog(const std::string& text) override;
};

#endif
