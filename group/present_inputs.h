// Whether a record belongs to the inputs that are there now. What records say of their inputs is asked here
// alone.
#ifndef TAVMAP_GROUP_PRESENT_INPUTS_H
#define TAVMAP_GROUP_PRESENT_INPUTS_H

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "results/record.h"

namespace study {

class PresentInputs {
 public:
  // bidsDir is the data set "raw" of records, wherever it lay when they were made; the others, and that one
  // where bidsDir is empty, lie where outDir/dataset_description.json says.
  PresentInputs(const std::filesystem::path& bidsDir, const std::filesystem::path& outDir);

  // What speaks against the record, one text per input: a source of one of its maps (the map's sidecar names
  // them) that is gone, or that was changed after the record was written. Contents are not read. Empty when
  // nothing does. Sources outside any data set, or of one that is not there, cannot be looked at; see
  // missing().
  [[nodiscard]] std::vector<std::string> problemsOf(const Record& record, const std::filesystem::path& file);

  // Folders of data sets that records name and that are not there, so far.
  [[nodiscard]] const std::set<std::string>& missing() const { return missing_; }

 private:
  [[nodiscard]] std::filesystem::path fileOf(const std::string& uri);

  std::map<std::string, std::filesystem::path> folders_;  // by the name of the data set
  std::set<std::string> missing_;
};

// Where the data set lies that the participant level read; empty where the output folder does not say.
[[nodiscard]] std::filesystem::path rawDataFolder(const std::filesystem::path& outDir);

}  // namespace study

#endif
