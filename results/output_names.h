// Names of result files, and where the result of one reference is put together before it appears
// in the output folder.
#ifndef TAVMAP_RESULTS_OUTPUT_NAMES_H
#define TAVMAP_RESULTS_OUTPUT_NAMES_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "formats/claimed_folder.h"
#include "results/record.h"
#include "results/results.h"

namespace study {

// Alphanumeric labels for a list of names, each from its name alone: what else is asked for must not
// decide which files a result has. Throws InputError when two names share a label. what: "references";
// where begins the message.
[[nodiscard]] std::vector<std::string> labelsOf(const std::vector<std::string>& names, const char* what,
                                                const std::string& where);

// Of a request: images that pictures draw maps on (study/underlays.h).
[[nodiscard]] std::string meanVolumeName(const std::string& prefix);  // PREFIX_desc-mean_boldref.nii.gz
[[nodiscard]] std::string anatomyName(const std::string& prefix);     // PREFIX_desc-anatomy_T1w.nii.gz

// File names of one reference. prefix: entities or a plain word; seed: the reference's label.
class OutputNames {
 public:
  OutputNames(std::string prefix, std::string seedLabel);
  // PREFIX_seed-V1_contrast-facesRef2Vox_stat-effect_statmap.nii.gz
  [[nodiscard]] std::string map(const std::string& conditionLabel, tav::MapType type) const;
  // The same with stat-p: p of single voxels; stat-z: against its own null values; with desc-thresholded:
  // where it passes, 0 elsewhere.
  [[nodiscard]] std::string nullP(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string nullZ(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string thresholded(const std::string& conditionLabel, tav::MapType type) const;
  // Of DTAV, with stat-reversed: minus that of the series in reversed time.
  [[nodiscard]] std::string reversed(const std::string& conditionLabel) const;
  // The same with stat-pfwe and stat-pfwecluster: family-wise p of each voxel and of each voxel's cluster.
  [[nodiscard]] std::string voxelP(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string clusterP(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string status(const std::string& conditionLabel) const;
  [[nodiscard]] std::string direction(const std::string& conditionLabel) const;
  [[nodiscard]] std::string directionTable(const std::string& conditionLabel) const;
  // Which voxels of a map pass at which q.
  [[nodiscard]] std::string passing(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string passingTable(const std::string& conditionLabel, tav::MapType type) const;
  [[nodiscard]] std::string clusters(const std::string& conditionLabel) const;  // .tsv
  [[nodiscard]] std::string evidence(const std::string& conditionLabel) const;  // .json
  [[nodiscard]] std::string statusTable(const std::string& conditionLabel) const;
  std::string courses() const;  // .tsv
  std::string record() const;   // .json; written last
  // "X.json" for "X.nii.gz" or "X.tsv".
  static std::string sidecarOf(const std::string& file);

 private:
  [[nodiscard]] std::string statistic(const std::string& conditionLabel, tav::MapType type,
                                      const char* what) const;
  [[nodiscard]] std::string stem(const std::string& more) const;
  std::string prefix_, seed_;
};

// Files of a request as a whole, beside the results of its references.
[[nodiscard]] std::string requestFileOf(const std::string& prefix);   // the request itself
[[nodiscard]] std::string failuresFileOf(const std::string& prefix);  // .tsv: what could not be computed
[[nodiscard]] std::string reportFileOf(const std::string& prefix);    // .html
// Of a data set: requests that failed as a whole.
inline constexpr const char* kRequestFailuresFile = "failures_tavmap.tsv";

// Removes a result, its record first. Files that the record names outside the folder stay. Throws RunError.
void removeResult(const std::filesystem::path& outputFolder, const std::string& recordFile,
                  const Record& record);

// A folder inside the output folder in which a result's files are made. publish() moves them into
// the output folder, the record last, so that a result either has its record or does not count. What
// a killed process leaves of it, formats::removeAbandoned() removes.
class Staging {
 public:
  // prefix: that of the request; label: the reference's. Throws formats::FileError, also when another
  // process is making the same result.
  Staging(const std::filesystem::path& outputFolder, const std::string& prefix, const std::string& label);
  [[nodiscard]] std::filesystem::path path(const std::string& file) const { return folder() / file; }
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
  // Files of the result that was there go where the new one has none of their names. Throws RunError.
  // Returns the names of the files, the record included.
  std::vector<std::string> publish(const std::string& record);

 private:
  std::filesystem::path output_;
  formats::ClaimedFolder folder_;
};

}  // namespace study

#endif
