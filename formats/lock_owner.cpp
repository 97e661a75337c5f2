#include "formats/lock_owner.h"

#include <fmt/core.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <ctime>
#include <exception>

namespace formats {
namespace {

std::string hostName() {
  struct utsname system {};
  return ::uname(&system) == 0 ? system.nodename : "an unknown host";
}

std::string now() {
  const std::time_t seconds = std::time(nullptr);
  std::tm parts{};
  char text[32] = "";
  if (::gmtime_r(&seconds, &parts) != nullptr)
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts);
  return text;
}

}  // namespace

std::string lockOwnerText() {
  return fmt::format("process {} on {}, since {}", ::getpid(), hostName(), now());
}

void writeLockOwner(int fd) noexcept {
  try {
    const std::string text = lockOwnerText();
    if (::ftruncate(fd, 0) == 0) (void)!::pwrite(fd, text.data(), text.size(), 0);
  } catch (const std::exception&) {
    // No memory for a text that only messages need.
  }
}

std::string readLockOwner(int fd) {
  char bytes[256];
  const ssize_t count = ::pread(fd, bytes, sizeof bytes, 0);
  std::string text;
  for (ssize_t i = 0; i < count; ++i) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    if (c >= 0x20 && c != 0x7f) text += bytes[i];
  }
  return text;
}

}  // namespace formats
