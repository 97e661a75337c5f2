#include "cluster/run_command.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "formats/file_lock.h"

namespace cluster {
namespace {

using formats::Descriptor;

// Memory that a process writes to as to a file, so that nobody has to read while it works.
Descriptor answerMemory() {
  Descriptor memory(memfd_create("answer", MFD_CLOEXEC));
  if (memory.get() < 0)
    throw std::runtime_error(std::string("no memory for an answer: ") + std::strerror(errno));
  return memory;
}

std::string contentsOf(const Descriptor& memory) {
  std::string text;
  std::array<char, 4096> piece{};
  lseek(memory.get(), 0, SEEK_SET);
  for (ssize_t got = 0; (got = read(memory.get(), piece.data(), piece.size())) > 0;)
    text.append(piece.data(), static_cast<std::size_t>(got));
  return text;
}

int spawned(const Command& command, const Descriptor& out, const Descriptor& err, pid_t& child) {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, out.get(), 1);
  posix_spawn_file_actions_adddup2(&actions, err.get(), 2);
  const int problem = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return problem;
}

int codeOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Answer run(const Command& command) {
  const Descriptor out = answerMemory(), err = answerMemory();
  pid_t child = 0;
  const int problem = spawned(command, out, err, child);
  if (problem == ENOENT) return {127, "", command[0] + ": there is no such program"};
  if (problem != 0)
    throw std::runtime_error(fmt::format("{} cannot be started: {}", command[0], std::strerror(problem)));
  const int code = codeOf(child);
  return {code, contentsOf(out), contentsOf(err)};
}

}  // namespace cluster
