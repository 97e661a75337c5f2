// The folders that a study writes into: swept when it begins and when it ends, with its job files and its
// claims on the names of its results in between.
#ifndef TAVMAP_STUDY_STUDY_FOLDERS_H
#define TAVMAP_STUDY_STUDY_FOLDERS_H

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

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
  // As enter(); and as long as this object lives no other process may claim the prefix in the folder.
  // Throws formats::FileError, which says who works there when somebody does.
  void claim(const std::filesystem::path& folder, const std::string& prefix);
  // Writes a job file in a folder of its own below the work folder; returns its path. Throws
  // formats::FileError.
  std::filesystem::path writeJob(const std::filesystem::path& workFolder, const std::string& text);

 private:
  std::vector<formats::ClaimedFolder> claims_;  // released last
  std::set<std::filesystem::path> entered_;
  std::map<std::filesystem::path, formats::ClaimedFolder> jobs_;
  int written_ = 0;
};

}  // namespace study

#endif
