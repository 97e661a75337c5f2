// `tavmap` at a terminal, as a person uses it.
#ifndef TAVMAP_TESTS_APP_PSEUDO_TERMINAL_H
#define TAVMAP_TESTS_APP_PSEUDO_TERMINAL_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace app_test {

class PseudoTerminal {
 public:
  // Starts the program with these arguments in this working folder. kind: what TERM says; a "dumb" one cannot
  // move its cursor.
  PseudoTerminal(const std::vector<std::string>& arguments, const std::string& folder,
                 const std::string& kind = "dumb");
  ~PseudoTerminal();  // ends the program if it still runs
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Reads until this text has been shown after what was expected before; false when the program
  // ends, or stays silent for half a minute, without it.
  [[nodiscard]] bool shows(const std::string& text);

  // Whether keys reach the program one by one, Ctrl-D too, rather than as finished lines.
  [[nodiscard]] bool takesSingleKeys() const;

  void type(const std::string& keys);

  // Waits for the end of the program; its exit code.
  int exitCode();

 private:
  bool readMore();

  pid_t program_ = -1;
  int terminal_ = -1;
  std::string shown_;
};

inline constexpr const char* kControlA = "\x01";
inline constexpr const char* kControlC = "\x03";
inline constexpr const char* kControlD = "\x04";
inline constexpr const char* kTab = "\t";
inline constexpr const char* kBackspace = "\x7f";
inline constexpr const char* kUp = "\x1b[A";
inline constexpr const char* kLeft = "\x1b[D";

}  // namespace app_test

#endif
