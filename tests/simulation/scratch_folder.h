// A folder of a test's own, removed with the object.
#ifndef TAVMAP_TESTS_SIMULATION_SCRATCH_FOLDER_H
#define TAVMAP_TESTS_SIMULATION_SCRATCH_FOLDER_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

class ScratchFolder {
 public:
  ScratchFolder() {
    static int count = 0;
    path_ = std::filesystem::path(testing::TempDir()) /
            ("simulation-" + std::to_string(getpid()) + '-' + std::to_string(++count));
    std::filesystem::remove_all(path_);
  }
  ~ScratchFolder() { std::filesystem::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string path() const { return path_.string(); }
  [[nodiscard]] std::string path(const std::string& name) const { return (path_ / name).string(); }

  // Contents of all files, by their path in the folder.
  [[nodiscard]] std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_))
      if (entry.is_regular_file()) found[std::filesystem::relative(entry.path(), path_).string()] = textOf(entry.path());
    return found;
  }

  static std::string textOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }

 private:
  std::filesystem::path path_;
};

#endif
