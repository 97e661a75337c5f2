// The folders that a study writes into: swept when it begins and when it ends, with its job files in
// between.
#ifndef TAVMAP_STUDY_STUDY_FOLDERS_H
#define TAVMAP_STUDY_STUDY_FOLDERS_H

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "formats/claimed_folder.h"

namespace study {

class StudyFolders {
 public:
  StudyFolders() = default;
  ~StudyFolders();  // removes the job files, and what killed workers have left
  StudyFolders(const StudyFolders&) = delete;
  StudyFolders& operator=(const StudyFolders&) = delete;

  // Makes the folder where it is missing and removes what dead processes have left in it, once per
  // folder. Throws formats::FileError.
  void enter(const std::filesystem::path& folder);
  // Writes a job file in a folder of its own below the work folder; returns its path. Throws
  // formats::FileError.
  std::filesystem::path writeJob(const std::filesystem::path& workFolder, const std::string& text);

 private:
  std::set<std::filesystem::path> entered_;
  std::map<std::filesystem::path, formats::ClaimedFolder> jobs_;
  int written_ = 0;
};

}  // namespace study

#endif
