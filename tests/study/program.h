// Running the built `tavmap` from a test.
#ifndef TAVMAP_TESTS_STUDY_PROGRAM_H
#define TAVMAP_TESTS_STUDY_PROGRAM_H

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

struct ProgramResult {
  int exitCode = -1;  // 128 + signal when a signal ended it
  std::string out, err;
};

// A process that runs in the background. Its output goes to files in `folder`.
class Program {
 public:
  Program(const std::vector<std::string>& arguments, const std::filesystem::path& folder);
  ~Program();  // kills it
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t pid() const { return pid_; }
  std::vector<pid_t> children() const;
  bool running();
  void signal(int number);
  ProgramResult wait();

 private:
  std::filesystem::path folder_;
  pid_t pid_ = -1;
  int status_ = 0;
};

// Runs `tavmap` with these arguments to its end.
ProgramResult tavmap(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

// Contents of all files below a folder by their relative path; hidden folders and "work" left out.
std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder);

#endif
