// Everything about one connectome in one place, as it is kept: PREFIX_connectome.json, written last.
#ifndef TAVMAP_CONNECTOME_CONNECTOME_RECORD_H
#define TAVMAP_CONNECTOME_CONNECTOME_RECORD_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace connectome {

struct MeasureRecord {
  std::string measure;               // as in file names: measureLabel()
  std::size_t edges = 0;             // tested
  std::vector<std::size_t> passing;  // per q of the record
  std::size_t familyWise = 0;        // edges with a family-wise p of at most .05
  double largest = 0;                // magnitude
  std::string file, pFile, qFile, familyWiseFile;
};

struct ConditionRecord {
  std::string name;
  std::vector<std::string> runs;
  int volumes = 0, effectiveVolumes = 0;
  std::size_t samples = 0;  // of the fits
  std::vector<MeasureRecord> measures;
  std::size_t pairsTested = 0, pairsSupported = 0;  // for their direction
  std::string directionFile, nodesFile, edgesFile;
};

struct Record {
  std::string key;  // equal keys mean equal files
  std::string title, version;
  std::map<std::string, std::string> madeFrom;  // what the key was made from, in words, to say what differs
  int order = 1;
  std::string orderChosenBy;
  std::size_t nodes = 0;
  std::vector<std::string> undefined;    // nodes without a usable series
  std::size_t surrogates = 0;            // per node; 0: parametric tests
  std::vector<std::string> givenSeries;  // "global signal", regions, or "all others"
  std::vector<double> q;
  double fdrConstant = 1;
  std::uint32_t seed = 0;
  std::vector<std::string> networks;  // in picture order; none: nodes lie in clusters
  std::vector<std::string> warnings;
  std::vector<ConditionRecord> conditions;
  std::map<std::string, std::uintmax_t> files;  // of the folder, with their sizes; without the record
};

[[nodiscard]] std::string recordFileOf(const std::string& prefix);  // PREFIX_connectome.json
[[nodiscard]] std::string recordText(const Record& record);
// Throws formats::FileError: not there, no JSON, a missing or wrong value (which).
[[nodiscard]] Record readRecordFile(const std::string& path);

}  // namespace connectome

#endif
