#include "formats/system_calls.h"

#include <stdio.h>
#include <unistd.h>

namespace formats {

SystemCalls& systemCalls() {
  static SystemCalls calls{::write, ::read, ::fsync, ::rename};
  return calls;
}

}  // namespace formats
