// `tavmap` at a terminal, as a person uses it.
#ifndef TAVMAP_TESTS_APP_PSEUDO_TERMINAL_H
#define TAVMAP_TESTS_APP_PSEUDO_TERMINAL_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace app_test {

class PseudoTerminal {
 public:
  // Starts the program with these arguments in this working folder.
  PseudoTerminal(const std::vector<std::string>& arguments, const std::string& folder);
  ~PseudoTerminal();  // ends the program if it still runs
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Reads until this text has been shown after what was expected before; false when the program
  // ends, or stays silent for half a minute, without it.
  [[nodiscard]] bool shows(const std::string& text);

  void type(const std::string& keys);

  // Waits for the end of the program; its exit code.
  int exitCode();

 private:
  bool readMore();

  pid_t program_ = -1;
  int terminal_ = -1;
  std::string shown_;
};

inline constexpr const char* kControlD = "\x04";

}  // namespace app_test

#endif
