// What one study computes: runs, reference regions, conditions, settings and where results go.
// Plain values, as a request file or the BIDS command line gives them; nothing has been opened yet
// and every path is absolute or relative to the current folder.
#ifndef TAVMAP_REQUEST_REQUEST_H
#define TAVMAP_REQUEST_REQUEST_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "request/volume_ranges.h"
#include "tav/tav_defs.h"

namespace study {

// Motion censoring.
struct CensorSettings {
  double fdThresholdMm = 0;  // frame-wise displacement above it censors a volume; 0: no censoring
  int minimumSegment = 5;    // shorter stretches between censored volumes are left out too, volumes
  int alsoBefore = 0;        // volumes censored before each one above the threshold
  int alsoAfter = 0;         // and after it
  bool operator==(const CensorSettings&) const = default;
};

// One imaging run and its preparation.
struct RunRequest {
  std::string name;
  std::filesystem::path bold;              // 4-D NIfTI
  std::filesystem::path mask;              // empty: voxels whose first value exceeds the inclusion threshold
  std::filesystem::path events;            // events table, may be empty
  std::filesystem::path confounds;         // TSV, may be empty
  std::vector<std::string> confoundTerms;  // presets and column names, in order
  int dropVolumes = 0;                     // leading volumes left out; kDropFromConfounds: as the table says
  CensorSettings censoring;
  double trSeconds = 0;  // 0: as the files say
  int line = 0;          // in the request file, 0: none
  bool operator==(const RunRequest&) const = default;
};
inline constexpr int kDropFromConfounds = -1;

enum class ReferenceKind { kLabels, kMask, kSphere, kVoxels };

// One entry that describes one or several reference regions.
struct ReferenceRequest {
  ReferenceKind kind = ReferenceKind::kLabels;
  std::string name;             // empty for labels: their own names
  std::filesystem::path image;  // labels, mask
  std::filesystem::path table;  // labels: names; empty: beside the image
  double probability = 0;       // labels: least of an atlas with one volume per label; 0: a label image
  bool allLabels = false;
  std::vector<std::string> labels;   // names, or indices as texts
  std::array<double, 3> centreMm{};  // sphere, scanner coordinates (RAS+)
  double radiusMm = 0;
  std::vector<std::array<int, 3>> voxels;  // indices from 0 in the run's grid
  int line = 0;
  bool operator==(const ReferenceRequest&) const = default;
};

enum class IntervalKind { kWholeRun, kTyped, kEvents };

// One run, or a source/target pair of runs, within a condition.
struct ConditionPart {
  std::string source;              // run whose reference course is used
  std::string target;              // run whose voxels are mapped; equal to source without pairs
  std::vector<VolumeRange> typed;  // volumes of the run as stored, before anything is dropped
  bool operator==(const ConditionPart&) const = default;
};

struct ConditionRequest {
  std::string name;
  IntervalKind kind = IntervalKind::kWholeRun;
  std::vector<ConditionPart> parts;  // empty: every run, each with itself
  std::vector<VolumeRange> typed;    // for every part that has none of its own
  std::vector<std::string> trialTypes;
  double delaySeconds = 0;               // added to onsets: the haemodynamic delay
  std::optional<double> joinGapSeconds;  // events closer than this form one block; unset: one TR
  int minimumVolumes = 0;                // shorter intervals are left out; 0: what the model needs
  int line = 0;
  bool operator==(const ConditionRequest&) const = default;
};

enum class Method { kCalibrated, kPlugin };
enum class OrderChoice { kFixed, kBic, kAic, kHqc };

// Each member has its row in request/settings_table.cpp, which says the rest about it.
struct Settings {
  Method method = Method::kCalibrated;
  OrderChoice orderChoice = OrderChoice::kFixed;
  int order = 1;
  int maxOrder = 8;       // tried when the order is chosen by a criterion
  int orderSample = 500;  // voxels whose joint fits are looked at
  int nullDraws = 20;     // method calibrated only
  int fweDraws = 1000;    // whole maps of surrogates; method calibrated only, else 0
  std::set<tav::MapType> mapTypes{tav::DEF_T_MAPTYPES.begin(), tav::DEF_T_MAPTYPES.end()};
  std::vector<double> qValues{0.01, 0.05, 0.1};  // ascending
  double fdrConstant = 1.5;                      // method calibrated only
  int cvConstant = 2;                            // method plugin only
  int surrogates = 1000;
  int discardedTimePoints = 100;
  int inclusionThreshold = 100;
  double instantaneousLower = 0.05;
  double rcUpper = 0.7;
  double mapScale = 100;
  double highPass = 0;  // seconds: slower cosines are regressed; 0: none
  bool operator==(const Settings&) const = default;
};

// Of connectomes alone ([connectome]); maps do not depend on it.
struct ConnectomeSettings {
  int surrogates = 1000;                 // per region
  std::vector<std::string> conditionOn;  // kGlobalSignal, names of references, or kAllOthers by itself
  bool operator==(const ConnectomeSettings&) const = default;
};
inline constexpr const char* kGlobalSignal = "global signal";
inline constexpr const char* kAllOthers = "all others";

struct OutputRequest {
  std::filesystem::path folder;
  std::filesystem::path workFolder;  // empty: "work" inside the folder
  std::string prefix;                // entities, "sub-01_task-rest", or any plain word
  bool operator==(const OutputRequest&) const = default;
};

struct Request {
  std::string title;  // how messages name it: the request file, or a participant
  OutputRequest output;
  Settings settings;
  ConnectomeSettings connectome;
  std::optional<std::uint32_t> seed;  // unset: one is drawn and stored
  std::vector<RunRequest> runs;
  std::vector<ReferenceRequest> references;
  std::vector<ConditionRequest> conditions;  // never empty once read
  std::filesystem::path anatomy;             // that pictures draw maps on; changes no number; empty: none
  // Folders that sources are named relative to, by the name of the data set: "raw", "preprocessed".
  std::map<std::string, std::filesystem::path> datasets;
  bool operator==(const Request&) const = default;
};

const char* methodName(Method method);
const char* orderChoiceName(OrderChoice choice);  // "fixed", "bic", "aic", "hqc"
// The other way round; unset for an unknown name.
[[nodiscard]] std::optional<Method> methodNamed(std::string_view name);
[[nodiscard]] std::optional<OrderChoice> orderChoiceNamed(std::string_view name);
// In words, for logs, sidecars and help: which method ran and how it differs from the other.
const char* methodDescription(Method method);

}  // namespace study

#endif
