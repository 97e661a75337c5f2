// Folders for temporaries beside files that stay, and the sweeping of what killed processes left.
#ifndef TAVMAP_FORMATS_CLAIMED_FOLDER_H
#define TAVMAP_FORMATS_CLAIMED_FOLDER_H

#include <filesystem>
#include <string>

#include "formats/file_lock.h"

namespace formats {

// An empty folder of this process alone, ".tavmap-NAME" in another folder, removed with the object.
// While it lives, a lock on ".tavmap-NAME.lock" says so to others, who leave it alone.
// The file says who has it (lock_owner.h).
class ClaimedFolder {
 public:
  // Removes what a dead process left under the name. Throws FileError: a living process has it (which one,
  // and since when), or it cannot be made.
  ClaimedFolder(const std::filesystem::path& parent, const std::string& name);
  ~ClaimedFolder();
  ClaimedFolder(ClaimedFolder&& other) noexcept = default;
  ClaimedFolder& operator=(ClaimedFolder&&) = delete;

  // Under the first free one of NAME-PID, NAME-PID-2, ...: no two processes meet there.
  static ClaimedFolder anew(const std::filesystem::path& parent, const std::string& name);

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  ClaimedFolder(std::filesystem::path path, Descriptor lock);
  std::filesystem::path path_;
  Descriptor lock_;
};

// Removes the claimed folders and the unfinished files of AtomicFile that dead processes have left in
// a folder, not below it. What belongs to a living one stays, and everything on file systems without
// locks. Never fails. Cost: one look at every name in the folder.
void removeAbandoned(const std::filesystem::path& folder) noexcept;

}  // namespace formats

#endif
