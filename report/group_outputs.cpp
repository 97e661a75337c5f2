#include "report/group_outputs.h"

#include <algorithm>
#include <map>

#include "formats/atomic_file.h"
#include "group/group_names.h"

namespace report {

namespace fs = std::filesystem;

fs::path GroupOutputs::folder() const {
  return outDir / study::kGroupFolder;
}

std::vector<GroupOutputs> readGroupOutputs(const fs::path& outDir) {
  std::vector<std::string> files;
  std::error_code missing;
  for (const fs::directory_entry& entry : fs::directory_iterator(outDir / study::kGroupFolder, missing)) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(study::kGroupRecordEnd)) files.push_back(name);
  }
  std::sort(files.begin(), files.end());
  std::map<std::string, GroupOutputs> tests;
  for (const std::string& file : files) {
    const fs::path path = outDir / study::kGroupFolder / file;
    TestedCell cell{file, formats::parseJson(formats::readTextFile(path.string()), path.string()),
                    study::readGroupRecord(path)};
    GroupOutputs& outputs = tests[cell.record.test];
    outputs.outDir = outDir;
    outputs.test = cell.record.test;
    outputs.cells.push_back(std::move(cell));
  }
  std::vector<GroupOutputs> all;
  for (auto& [name, outputs] : tests) all.push_back(std::move(outputs));
  return all;
}

}  // namespace report
