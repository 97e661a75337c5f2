// A command in a process of its own, and the pipe on which it reports. The thread that starts it must outlive it: the
// system takes the end of that thread for the parent's.
#ifndef TAVMAP_STUDY_CHILD_PROCESS_H
#define TAVMAP_STUDY_CHILD_PROCESS_H

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace study {

// The descriptor on which a child finds its end of the pipe, open for writing.
inline constexpr int kReportDescriptor = 3;

class ChildProcess {
 public:
  // command: the path of a program, then its arguments. The child ignores SIGINT: Ctrl-C reaches a
  // whole terminal, and its parent ends it. The system kills it when the parent dies. Throws
  // RunError when no process can be made; a program that cannot be started is a message "failed".
  // outputFile: gets its standard output and error, after what the file has; empty: they are the parent's.
  explicit ChildProcess(const std::vector<std::string>& command, const std::string& outputFile = {});
  ~ChildProcess();  // kills it
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // The end of the pipe to read from; closes with the object.
  [[nodiscard]] int reports() const { return reports_; }
  void kill();
  // Asks it to end, as Ctrl-C would ask its parent.
  void terminate();
  // Waits for the end and says in words how it came: "ended by signal 9 (Killed)".
  std::string wait();
  // After wait(); none: a signal ended it.
  [[nodiscard]] std::optional<int> exitCode() const { return exitCode_; }

 private:
  pid_t pid_ = -1;
  std::optional<int> exitCode_;
  int reports_ = -1;
};

}  // namespace study

#endif
