// A store and a listener that keep what a run gives them.
#ifndef TAVMAP_TESTS_TAV_RECORDING_STORE_H
#define TAVMAP_TESTS_TAV_RECORDING_STORE_H

#include <map>
#include <string>
#include <vector>

#include "tav/memory_store.h"
#include "tav/run_observer.h"

class RecordingStore : public tav::MemoryStore {
 public:
  struct Saved {
    std::string path;
    tav::MapSetShape shape;
    std::vector<Map> maps;
  };

  int discard() override;
  // Values are NaN until the run writes them.
  bool create(const tav::MapSetShape& shape, std::ostream& reasons) override;
  float* values(int map) override;
  void describe(int map, const tav::MapHeader& header) override;
  void saveMaps(const std::string& path) override;
  std::string saveLog(const std::string& path, const std::string& text) override;

  [[nodiscard]] std::size_t callCount(const std::string& operation) const;

  // Faults.
  int discardResult = 1;
  bool failCreate = false;
  int nullMap = -1;        // values() is null for this map
  std::string logProblem;  // why no log can be saved

  std::vector<std::string> calls;
  std::vector<Saved> saved;
  std::map<std::string, std::string> logs;  // texts by path
};

class Listener : public tav::RunObserver {
 public:
  void onLog(const std::string& text) override { lines.push_back(text); }
  void onProgress(int percent) override { percents.push_back(percent); }

  std::vector<std::string> lines;
  std::vector<int> percents;
};

#endif
