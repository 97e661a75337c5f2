#include "bench/study/child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace bench {
namespace {

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void become(const std::vector<std::string>& arguments) {
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  execv(argv[0], argv.data());
  _exit(127);
}

}  // namespace

Cost runChild(const std::vector<std::string>& arguments) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("cannot start a process");
  if (pid == 0) become(arguments);
  int status = 0;
  rusage usage{};
  if (wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::string command;
    for (const std::string& argument : arguments) command += argument + " ";
    throw std::runtime_error("failed: " + command);
  }
  Cost cost;
  cost.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
  cost.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  cost.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024;
  return cost;
}

}  // namespace bench
