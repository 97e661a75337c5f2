// Running the built `tavmap` from a test.
#ifndef TAVMAP_TESTS_SUPPORT_PROGRAM_H
#define TAVMAP_TESTS_SUPPORT_PROGRAM_H

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/scratch.h"

struct ProgramResult {
  int exitCode = -1;  // 128 + signal when a signal ended it
  std::string out, err;
};

struct ProgramStart {
  std::vector<std::string> arguments;
  std::filesystem::path folder;           // where it works
  std::string input = "";                 // what it reads from its input
  std::vector<std::string> checker = {};  // a command before it, such as a memory checker
};

// `tavmap` in the background.
class Program {
 public:
  explicit Program(const ProgramStart& start);
  ~Program();  // kills it
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t pid() const { return pid_; }
  std::vector<pid_t> children() const;
  bool running();
  void signal(int number);
  ProgramResult wait();

 private:
  Scratch streams_;  // its input and outputs
  pid_t pid_ = -1;
  int status_ = 0;
};

// Runs `tavmap` to its end.
ProgramResult tavmap(const ProgramStart& start);
ProgramResult tavmap(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

#endif
