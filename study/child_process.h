// A command in a process of its own, and the pipe on which it reports.
#ifndef TAVMAP_STUDY_CHILD_PROCESS_H
#define TAVMAP_STUDY_CHILD_PROCESS_H

#include <sys/types.h>

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
  explicit ChildProcess(const std::vector<std::string>& command);
  ~ChildProcess();  // kills it
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // The end of the pipe to read from; closes with the object.
  [[nodiscard]] int reports() const { return reports_; }
  void kill();
  // Waits for the end and says in words how it came: "ended by signal 9 (Killed)".
  std::string wait();

 private:
  pid_t pid_ = -1;
  int reports_ = -1;
};

}  // namespace study

#endif
