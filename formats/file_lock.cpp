#include "formats/file_lock.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace formats {

FileLock tryLock(int fd) noexcept {
  if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return FileLock::kMine;
  return errno == EWOULDBLOCK ? FileLock::kTaken : FileLock::kUnknown;
}

bool leadsTo(const std::string& path, int fd) noexcept {
  struct stat open {};
  struct stat named {};
  return ::fstat(fd, &open) == 0 && ::lstat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) ::close(fd_);
}
Descriptor::Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

}  // namespace formats
