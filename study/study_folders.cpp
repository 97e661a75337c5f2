#include "study/study_folders.h"

#include "formats/atomic_file.h"

namespace study {

StudyFolders::~StudyFolders() {
  jobs_.clear();
  for (const auto& folder : entered_) formats::removeAbandoned(folder);
}

void StudyFolders::enter(const std::filesystem::path& folder) {
  if (!entered_.insert(folder).second) return;
  std::filesystem::create_directories(folder);
  formats::removeAbandoned(folder);
}

void StudyFolders::claim(const std::filesystem::path& folder, const std::string& prefix) {
  enter(folder);
  claims_.emplace_back(folder, "study-" + prefix);
}

std::filesystem::path StudyFolders::writeJob(const std::filesystem::path& workFolder,
                                             const std::string& text) {
  auto at = jobs_.find(workFolder);
  if (at == jobs_.end())
    at = jobs_.emplace(workFolder, formats::ClaimedFolder::anew(workFolder, "jobs")).first;
  const std::filesystem::path file = at->second.path() / (std::to_string(++written_) + ".job");
  formats::writeTextFile(file.string(), text, formats::Durability::kCached);
  return file;
}

}  // namespace study
