#include "formats/system_calls.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/uio.h>
#include <unistd.h>

namespace formats {

SystemCalls& systemCalls() {
  static SystemCalls calls{::write, ::read, ::pwritev, ::pread, ::fallocate, ::fsync, ::rename};
  return calls;
}

}  // namespace formats
