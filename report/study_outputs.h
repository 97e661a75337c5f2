// What a report is made from: the files that a request left in its output folder, and nothing else.
#ifndef TAVMAP_REPORT_STUDY_OUTPUTS_H
#define TAVMAP_REPORT_STUDY_OUTPUTS_H

#include <filesystem>
#include <string>
#include <vector>

#include "formats/json_file.h"
#include "results/record.h"

namespace report {

struct ReferenceOutputs {
  std::string file;    // the record's name
  formats::Json json;  // as it stands in the file; numbers of the page are quoted from it
  study::Record record;
};

struct FailedReference {
  std::string reference, message;
};

// Of one request, whose files begin with one prefix.
struct StudyOutputs {
  std::filesystem::path folder;
  std::string prefix;
  std::vector<ReferenceOutputs> references;  // by name of the record
  std::vector<FailedReference> failures;
  std::string requestFile;  // empty: it was not kept
  [[nodiscard]] std::string path(const std::string& file) const { return (folder / file).string(); }
};

// Prefixes in a folder that have a record or a table of failures, sorted. Hidden folders are not looked at.
[[nodiscard]] std::vector<std::string> prefixesIn(const std::filesystem::path& folder);

// Throws formats::FileError for a record that cannot be read.
[[nodiscard]] StudyOutputs readStudyOutputs(const std::filesystem::path& folder, const std::string& prefix);

}  // namespace report

#endif
