// The system calls that can fail while a file is written or read, behind one replaceable table,
// so that a test can fill the disk or shorten a read. Production code never replaces it.
#ifndef TAVMAP_FORMATS_SYSTEM_CALLS_H
#define TAVMAP_FORMATS_SYSTEM_CALLS_H

#include <sys/types.h>
#include <sys/uio.h>

#include <cstddef>

namespace formats {

struct SystemCalls {
  int (*open)(const char* path, int flags, mode_t mode);
  int (*close)(int fd);
  ssize_t (*write)(int fd, const void* data, std::size_t bytes);
  ssize_t (*read)(int fd, void* data, std::size_t bytes);
  ssize_t (*pwritev)(int fd, const struct iovec* pieces, int count, off_t offset);
  ssize_t (*pread)(int fd, void* data, std::size_t bytes, off_t offset);
  int (*fallocate)(int fd, int mode, off_t offset, off_t bytes);
  int (*fsync)(int fd);
  int (*rename)(const char* from, const char* to);
};

// The table in use: the C library's functions unless a test has replaced some. Not synchronised.
[[nodiscard]] SystemCalls& systemCalls();

}  // namespace formats

#endif
