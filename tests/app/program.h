// Runs the installed-to-be program as a user does.
#ifndef TAVMAP_TESTS_APP_PROGRAM_H
#define TAVMAP_TESTS_APP_PROGRAM_H

#include <string>
#include <vector>

namespace app_test {

struct Finished {
  int exitCode;
  std::string out, err;
};

// `tavmap` with these arguments, in this working folder, with this text as its input.
Finished runTavmap(const std::vector<std::string>& arguments, const std::string& folder,
                   const std::string& input = "");

// The same with a command before it, such as a memory checker.
Finished runUnder(const std::string& checker, const std::vector<std::string>& arguments,
                  const std::string& folder, const std::string& input = "");

}  // namespace app_test

#endif
