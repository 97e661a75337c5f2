#include "tests/tav/recording_store.h"

#include <algorithm>
#include <limits>

int RecordingStore::discard() {
  calls.emplace_back("discard");
  tav::MemoryStore::discard();
  return discardResult;
}

bool RecordingStore::create(const tav::MapSetShape& shape, std::ostream& reasons) {
  calls.emplace_back("create");
  if (failCreate) reasons << "there is no room";
  if (failCreate || !tav::MemoryStore::create(shape, reasons)) return false;
  for (int map = 0; map < shape.nrOfMaps; ++map) {
    std::fill_n(tav::MemoryStore::values(map), maps()[static_cast<std::size_t>(map)].values.size(),
                std::numeric_limits<float>::quiet_NaN());
  }
  return true;
}

float* RecordingStore::values(int map) {
  calls.emplace_back("values");
  return map == nullMap ? nullptr : tav::MemoryStore::values(map);
}

void RecordingStore::describe(int map, const tav::MapHeader& header) {
  calls.emplace_back("describe");
  tav::MemoryStore::describe(map, header);
}

void RecordingStore::saveMaps(const std::string& path) {
  calls.emplace_back("saveMaps");
  saved.push_back({path, shape(), maps()});
}

std::string RecordingStore::saveLog(const std::string& path, const std::string& text) {
  calls.emplace_back("saveLog");
  if (logProblem.empty()) logs[path] = text;
  return logProblem;
}

std::size_t RecordingStore::callCount(const std::string& operation) const {
  return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), operation));
}
