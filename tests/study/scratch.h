// A folder of its own for one test, removed at its end, and files in it.
#ifndef TAVMAP_TESTS_STUDY_SCRATCH_H
#define TAVMAP_TESTS_STUDY_SCRATCH_H

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavmap-study-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& folder() const { return folder_; }
  std::filesystem::path write(const std::string& name, const std::string& text = "") const {
    const std::filesystem::path path = folder_ / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

 private:
  std::filesystem::path folder_;
};

// The message with which an action fails, empty when it does not.
template <typename Error, typename Action>
std::string messageOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

#endif
