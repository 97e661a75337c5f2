// The record of one reference (*_tavmap.json): everything about its result, as plain values. What
// reads results reads this; record_json.h alone knows how it is written.
#ifndef TAVMAP_RESULTS_RECORD_H
#define TAVMAP_RESULTS_RECORD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "request/request.h"
#include "results/results.h"

namespace study {

struct RunRecord {               // one run, or a pair, of a condition
  std::string run;               // whose voxels are mapped
  std::string referenceFromRun;  // whose reference course is used; empty: the same
  double repetitionTime = 0;     // seconds
  int volumes = 0, volumesDropped = 0, volumesCensored = 0;  // of the stored image
  std::vector<VolumeRange> intervals;                        // volumes of the stored image, from 1
  int volumesUsed = 0, effectiveVolumes = 0;
  std::vector<std::string> confoundsRegressed;
  int confoundDegreesOfFreedom = 0;
  bool operator==(const RunRecord&) const = default;
};

struct ConditionRecord {
  std::string name;
  int volumesUsed = 0, effectiveVolumes = 0;
  std::vector<RunRecord> runs;
  StatusCounts voxels{};
  int surrogatesIllDefined = 0;
  std::string statusFile;
  std::vector<MapResult> maps;  // a peak that is not finite is NaN
  DirectionResult direction = {};
  std::string clustersFile = {};  // empty: there is none
  std::string evidenceFile = {};  // evidence.h; empty in records of earlier versions
  [[nodiscard]] std::size_t voxelsComputed() const {
    return voxels[static_cast<std::size_t>(StatusCode::kComputed)];
  }
  bool operator==(const ConditionRecord&) const = default;
};

// How the numbers came about; sidecars have it too.
struct ModelRecord {
  Settings settings;  // the order is the one in use; members that records lack keep their defaults
  std::uint32_t seed = 0, seedOfReference = 0;  // of the study; of this reference
  std::string version;                          // of the software
  bool operator==(const ModelRecord&) const = default;
};

// A file that a result was made from.
struct InputRecord {
  std::string kind;  // "run image", "mask", "events", "confounds", "label image", "label table"
  std::string file;  // as sourceUri() names it
  std::string sha256;
  bool operator==(const InputRecord&) const = default;
};

// Where the reference comes from; empty in records of earlier versions.
struct ReferenceSource {
  std::string kind;          // "labels", "mask", "sphere", "voxels"
  std::string image, table;  // as sourceUri() names them; empty: none
  std::int32_t labelIndex = 0;
  std::string labelName;
  std::string grid;          // of the image, in words
  std::string onGridOfRuns;  // how it was brought there
  std::array<double, 3> centreMm{};
  double radiusMm = 0;
  std::string rule = {};  // how the labels were made from probabilities; empty: they were not
  [[nodiscard]] bool empty() const { return kind.empty(); }
  bool operator==(const ReferenceSource&) const = default;
};

struct Record {
  std::string key;  // says from which inputs it was made
  std::string reference;
  int referenceVoxels = 0;
  ReferenceSource source = {};
  std::vector<InputRecord> inputs = {};
  ModelRecord model;
  std::vector<ConditionRecord> conditions;
  std::vector<std::string> warnings;
  std::map<std::string, std::uintmax_t> files;  // size of every file of the result, by name
  bool operator==(const Record&) const = default;
};

// Whether a map has a place of largest magnitude: not without computed voxels, whose record names the
// first voxel of all.
[[nodiscard]] bool hasPeak(const ConditionRecord& condition, const MapResult& map);

}  // namespace study

#endif
