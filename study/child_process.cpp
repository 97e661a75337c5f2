#include "study/child_process.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "formats/file_lock.h"
#include "request/problem.h"
#include "study/worker_channel.h"

namespace study {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

// The death signal outlives the start of the program. A parent that has died before it was set is told
// by its number.
void tieTo(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
}

// Makes the pipe's end the one descriptor that stays open in the program.
void placeReports(int fd) {
  if (fd == kReportDescriptor) {
    fcntl(fd, F_SETFD, 0);
  } else {
    dup2(fd, kReportDescriptor);
  }
}

void placeOutput(int fd) {
  if (fd < 0) return;
  dup2(fd, STDOUT_FILENO);
  dup2(fd, STDERR_FILENO);
}

// -1: none is wanted.
int openOutput(const std::string& file) {
  if (file.empty()) return -1;
  const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (fd < 0)
    throw RunError(fmt::format("cannot write {}: {}; check that its folder is there and the disk has space",
                               file, std::strerror(errno)));
  return fd;
}

// Keeps signals waiting: a child that still has its parent's handlers would note one and go on.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
  }
  ~SignalsHeld() { release(); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;
  void release() const { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

[[noreturn]] void become(char* const* words, int reports, int output, pid_t parent,
                         const SignalsHeld& signals) {
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_DFL);
  signals.release();
  tieTo(parent);
  placeOutput(output);
  placeReports(reports);
  execv(words[0], words);
  WorkerChannel(kReportDescriptor)
      .send(WorkerWord::kFailed, fmt::format("cannot start {}: {}", words[0], std::strerror(errno)));
  _exit(127);
}

std::string endOf(int status) {
  if (!WIFSIGNALED(status)) return "ended with code " + std::to_string(WEXITSTATUS(status));
  const int number = WTERMSIG(status);
  return fmt::format("was ended by signal {} ({})", number, strsignal(number));
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& outputFile) {
  const formats::Descriptor output(openOutput(outputFile));
  std::vector<std::string> words = command;
  const std::vector<char*> pointers = pointersTo(words);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0)
    throw RunError(std::string("cannot make a pipe to a worker: ") + std::strerror(errno));
  reports_ = ends[0];
  const pid_t parent = getpid();
  const SignalsHeld signals;
  pid_ = fork();
  if (pid_ == 0) become(pointers.data(), ends[1], output.get(), parent, signals);
  const int error = errno;
  close(ends[1]);
  if (pid_ > 0) return;
  close(reports_);
  throw RunError(std::string("cannot start a worker process: ") + std::strerror(error));
}

ChildProcess::~ChildProcess() {
  kill();
  if (pid_ > 0) wait();
  close(reports_);
}

void ChildProcess::kill() {
  if (pid_ > 0) ::kill(pid_, SIGKILL);
}

void ChildProcess::terminate() {
  if (pid_ > 0) ::kill(pid_, SIGTERM);
}

std::string ChildProcess::wait() {
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  if (WIFEXITED(status)) exitCode_ = WEXITSTATUS(status);
  return endOf(status);
}

}  // namespace study
