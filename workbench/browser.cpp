#include "workbench/browser.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <system_error>

extern char** environ;

namespace workbench {
namespace {

bool hasDisplay() {
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

bool writePrivately(const std::filesystem::path& file, const std::string& text) {
  const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (fd < 0) return false;
  const bool isWhole = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(fd) == 0 && isWhole;
}

// What it says is of no use here, and it lives on by itself.
void openWithDesktop(const std::string& what) {
  std::string program = "xdg-open", argument = what;
  const std::array<char*, 3> words{program.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  posix_spawnp(&pid, program.c_str(), &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
}

}  // namespace

Browser::Browser(const std::string& address, const std::filesystem::path& folder) {
  if (address.empty() || !hasDisplay()) return;
  file_ = folder / fmt::format("open-{}.html", getpid());
  const std::string page =
      fmt::format("<!DOCTYPE html><meta charset=\"utf-8\"><meta http-equiv=\"refresh\" content=\"0; url={}\">",
                  address);
  std::error_code ignored;
  std::filesystem::remove(file_, ignored);
  if (writePrivately(file_, page)) openWithDesktop("file://" + file_.string());
}

Browser::~Browser() {
  std::error_code ignored;
  if (!file_.empty()) std::filesystem::remove(file_, ignored);
}

std::string sshWords(int port) {
  if (std::getenv("SSH_CONNECTION") == nullptr) return "";
  std::array<char, HOST_NAME_MAX + 1> name{};
  const bool isKnown = gethostname(name.data(), name.size() - 1) == 0;
  return fmt::format("On the machine that you sit at, first forward the port:\n  ssh -L {}:127.0.0.1:{} {}\n", port,
                     port, isKnown ? name.data() : "HOST");
}

}  // namespace workbench
