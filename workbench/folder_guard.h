// Which files a page may see: those below the folders that were given at the start, with symbolic links
// resolved first. Hidden files (".name") are neither shown nor given.
#ifndef TAVMAP_WORKBENCH_FOLDER_GUARD_H
#define TAVMAP_WORKBENCH_FOLDER_GUARD_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

struct AllowedFolder {
  std::string name;            // unique, in addresses
  std::filesystem::path path;  // canonical
};

struct FolderEntry {
  std::string name;
  bool isFolder = false;
  std::uintmax_t bytes = 0;  // of a file
};

// Whether a canonical path is this folder or below it.
[[nodiscard]] bool isAtOrBelow(const std::filesystem::path& path, const std::filesystem::path& folder);

class FolderGuard {
 public:
  // Adds a folder, which need not be there yet, under its own name, with a number when that is taken; again:
  // nothing happens. Throws study::InputError for what is no folder.
  void allow(const std::filesystem::path& folder);
  [[nodiscard]] const std::vector<AllowedFolder>& folders() const { return folders_; }

  // The canonical path of what lies at `relative` in the folder of this name. Throws Refusal: 403 for what is
  // elsewhere, hidden, or named by "..", 404 for what is not there.
  [[nodiscard]] std::filesystem::path resolved(const std::string& folder, const std::string& relative) const;
  // The same for a whole path, as programs name files. 403 as well when it is not absolute.
  [[nodiscard]] std::filesystem::path resolvedPath(const std::filesystem::path& path) const;
  // Of a file that may not be there yet: its folder must be. Returns the path with its folder resolved.
  [[nodiscard]] std::filesystem::path resolvedForWriting(const std::filesystem::path& path) const;

  // What is in a folder that resolved() gave: folders and regular files by name, what points out of the
  // allowed folders left out. Throws Refusal 404 for what is no folder.
  [[nodiscard]] std::vector<FolderEntry> list(const std::filesystem::path& folder) const;

  // Where a canonical path lies: the allowed folder that is nearest above it, and the rest.
  struct Place {
    std::string folder, path;
  };
  [[nodiscard]] Place placeOf(const std::filesystem::path& path) const;  // empty: nowhere

 private:
  [[nodiscard]] bool isAllowed(const std::filesystem::path& canonical) const;
  std::vector<AllowedFolder> folders_;
};

}  // namespace workbench

#endif
