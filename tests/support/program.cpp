#include "tests/support/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

void redirect(const std::string& file, int flags, int descriptor) {
  const int fd = open(file.c_str(), flags, 0644);
  if (fd < 0 || dup2(fd, descriptor) < 0) _exit(126);
  close(fd);
}

}  // namespace

Program::Program(const ProgramStart& start) {
  std::vector<std::string> words = start.checker;
  words.emplace_back(TAVMAP_PROGRAM);
  words.insert(words.end(), start.arguments.begin(), start.arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const std::string in = streams_.write("in", start.input), out = streams_ / "out", err = streams_ / "err";
  pid_ = fork();
  if (pid_ != 0) return;
  redirect(in, O_RDONLY, STDIN_FILENO);
  redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  if (chdir(start.folder.c_str()) != 0) _exit(126);
  execvp(pointers[0], pointers.data());
  _exit(127);
}

Program::~Program() {
  if (!running()) return;
  kill(pid_, SIGKILL);
  wait();
}

bool Program::running() {
  if (pid_ <= 0) return false;
  if (waitpid(pid_, &status_, WNOHANG) == 0) return true;
  pid_ = -1;
  return false;
}

void Program::signal(int number) {
  if (pid_ > 0) kill(pid_, number);
}

std::vector<pid_t> Program::children() const {
  std::vector<pid_t> pids;
  std::ifstream stream("/proc/" + std::to_string(pid_) + "/task/" + std::to_string(pid_) + "/children");
  for (pid_t pid = 0; stream >> pid;) pids.push_back(pid);
  return pids;
}

ProgramResult Program::wait() {
  if (pid_ > 0) waitpid(pid_, &status_, 0);
  pid_ = -1;
  const int code = WIFSIGNALED(status_) ? 128 + WTERMSIG(status_) : WEXITSTATUS(status_);
  return {code, contentOf(streams_ / "out"), contentOf(streams_ / "err")};
}

ProgramResult tavmap(const ProgramStart& start) {
  return Program(start).wait();
}

ProgramResult tavmap(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  return tavmap(ProgramStart{arguments, folder});
}
