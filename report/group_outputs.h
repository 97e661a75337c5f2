// What the page of a group is made from: the records of one test, and the images that they name.
#ifndef TAVMAP_REPORT_GROUP_OUTPUTS_H
#define TAVMAP_REPORT_GROUP_OUTPUTS_H

#include <filesystem>
#include <string>
#include <vector>

#include "formats/json_file.h"
#include "group/group_test_record.h"

namespace report {

struct TestedCell {
  std::string file;    // the record's name, in the folder of the group
  formats::Json json;  // as it stands in the file; numbers of the page are quoted from it
  study::GroupTestRecord record;
};

// One test, asked of one or several maps.
struct GroupOutputs {
  std::filesystem::path outDir;  // of the participants
  std::string test;
  std::vector<TestedCell> cells;  // by name of the record
  [[nodiscard]] std::filesystem::path folder() const;
  [[nodiscard]] std::string path(const std::string& file) const { return (folder() / file).string(); }
};

// All tests whose records lie in the folder of the group, by name. Empty when there is no such folder. Throws
// formats::FileError for a record that cannot be read.
[[nodiscard]] std::vector<GroupOutputs> readGroupOutputs(const std::filesystem::path& outDir);

}  // namespace report

#endif
