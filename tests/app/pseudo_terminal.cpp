#include "tests/app/pseudo_terminal.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace app_test {
namespace {

constexpr int kSilenceMs = 30000;

constexpr winsize kWindow = {50, 300, 0, 0};  // no line of a test is broken

[[noreturn]] void become(const std::vector<std::string>& arguments, const std::string& folder,
                         const std::string& kind) {
  setenv("TERM", kind.c_str(), 1);
  setenv("HOME", folder.c_str(), 1);  // without the settings of whoever runs the tests
  std::string program = TAVMAP_PROGRAM;
  std::vector<std::string> words = arguments;
  std::vector<char*> argv = {program.data()};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  if (chdir(folder.c_str()) == 0) execv(program.c_str(), argv.data());
  _exit(127);
}

}  // namespace

PseudoTerminal::PseudoTerminal(const std::vector<std::string>& arguments, const std::string& folder,
                               const std::string& kind) {
  program_ = forkpty(&terminal_, nullptr, nullptr, &kWindow);
  if (program_ < 0) throw std::runtime_error("no pseudo terminal");
  if (program_ == 0) become(arguments, folder, kind);
}

PseudoTerminal::~PseudoTerminal() {
  if (program_ > 0) kill(program_, SIGKILL);
  if (program_ > 0) waitpid(program_, nullptr, 0);
  close(terminal_);
}

bool PseudoTerminal::readMore() {
  pollfd waiting{terminal_, POLLIN, 0};
  if (poll(&waiting, 1, kSilenceMs) <= 0) return false;
  std::array<char, 4096> bytes;
  const ssize_t count = read(terminal_, bytes.data(), bytes.size());
  if (count <= 0) return false;
  shown_.append(bytes.data(), static_cast<std::size_t>(count));
  return true;
}

bool PseudoTerminal::shows(const std::string& text) {
  for (;;) {
    const std::size_t at = shown_.find(text);
    if (at != std::string::npos) {
      shown_.erase(0, at + text.size());
      return true;
    }
    if (!readMore()) return false;
  }
}

bool PseudoTerminal::takesSingleKeys() const {
  termios settings{};
  return tcgetattr(terminal_, &settings) == 0 && (settings.c_lflag & ICANON) == 0;
}

void PseudoTerminal::type(const std::string& keys) {
  if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
    throw std::runtime_error("cannot type");
}

int PseudoTerminal::exitCode() {
  while (readMore()) {
  }
  int status = 0;
  waitpid(program_, &status, 0);
  program_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace app_test
