#include "tests/study/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

std::string contents(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

void redirect(const fs::path& file, int descriptor) {
  const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  dup2(fd, descriptor);
  close(fd);
}

}  // namespace

Program::Program(const std::vector<std::string>& arguments, const fs::path& folder) : folder_(folder) {
  std::vector<std::string> words = {TAVMAP_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  redirect(folder_ / "out.txt", STDOUT_FILENO);
  redirect(folder_ / "err.txt", STDERR_FILENO);
  execv(pointers[0], pointers.data());
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
  return {code, contents(folder_ / "out.txt"), contents(folder_ / "err.txt")};
}

ProgramResult tavmap(const std::vector<std::string>& arguments, const fs::path& folder) {
  return Program(arguments, folder).wait();
}

std::map<std::string, std::string> filesBelow(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
    const std::string name = entry->path().filename().string();
    if (entry->is_directory() && (name[0] == '.' || name == "work")) entry.disable_recursion_pending();
    if (entry->is_regular_file()) files[entry->path().lexically_relative(folder).string()] = contents(entry->path());
  }
  return files;
}
