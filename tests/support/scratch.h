// A folder of its own for one test, removed at its end, and files in it. Header only, so that tests of the
// core have it as well.
#ifndef TAVMAP_TESTS_SUPPORT_SCRATCH_H
#define TAVMAP_TESTS_SUPPORT_SCRATCH_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

// Whole contents of a file; empty when there is none.
[[nodiscard]] inline std::string contentOf(const std::filesystem::path& file) {
  std::ostringstream content;
  content << std::ifstream(file, std::ios::binary).rdbuf();
  return content.str();
}

// Contents of all files below a folder by their relative path; hidden folders and "work" left out.
[[nodiscard]] inline std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  for (std::filesystem::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
    const std::string name = entry->path().filename().string();
    if (entry->is_directory() && (name[0] == '.' || name == "work")) entry.disable_recursion_pending();
    if (entry->is_regular_file())
      files[entry->path().lexically_relative(folder).string()] = contentOf(entry->path());
  }
  return files;
}

// Names of the files that are in one of two such sets only or differ, one a line. Unlike a printed comparison
// of the sets it says which, however many there are.
[[nodiscard]] inline std::string differingFiles(const std::map<std::string, std::string>& before,
                                                const std::map<std::string, std::string>& after) {
  std::map<std::string, std::string> all = before;
  all.insert(after.begin(), after.end());
  std::string names;
  for (const auto& [name, content] : all) {
    const auto one = before.find(name), other = after.find(name);
    const bool same = one != before.end() && other != after.end() && one->second == other->second;
    if (!same) names += name + "\n";
  }
  return names;
}

class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavmap-test-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  // The same as text, for interfaces that take no path.
  [[nodiscard]] std::string path() const { return folder_.string(); }
  [[nodiscard]] std::string file(const std::string& name) const { return (folder_ / name).string(); }
  std::string operator/(const std::string& name) const { return file(name); }

  // Writes a file, and the folders above it.
  std::filesystem::path write(const std::string& name, const std::string& content = "") const {
    std::filesystem::path path = folder_ / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

 private:
  std::filesystem::path folder_;
};

#endif
