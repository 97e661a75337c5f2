#include "formats/system_calls.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/uio.h>
#include <unistd.h>

namespace formats {
namespace {

int openFile(const char* path, int flags, mode_t mode) {
  return ::open(path, flags, mode);
}

}  // namespace

SystemCalls& systemCalls() {
  static SystemCalls calls{openFile, ::close,     ::write, ::read,  ::pwritev,
                           ::pread,  ::fallocate, ::fsync, ::rename};
  return calls;
}

}  // namespace formats
