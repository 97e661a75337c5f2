// Locks that tell the files of a living process from those that a dead one has left: the system
// releases them with the last descriptor, however the process ends, and they hold across containers
// that share a folder, where process numbers say nothing.
#ifndef TAVMAP_FORMATS_FILE_LOCK_H
#define TAVMAP_FORMATS_FILE_LOCK_H

#include <string>

namespace formats {

enum class FileLock { kMine, kTaken, kUnknown };  // kUnknown: this file system has no locks

// Locks the open file unless another descriptor has it. Does not wait.
[[nodiscard]] FileLock tryLock(int fd) noexcept;

// Whether the path still leads to the open file: a lock on one that was removed meanwhile is worth
// nothing.
[[nodiscard]] bool leadsTo(const std::string& path, int fd) noexcept;

// A descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  [[nodiscard]] int get() const noexcept { return fd_; }

 private:
  int fd_;
};

}  // namespace formats

#endif
