// Puts the real system calls back at the end of a test.
#ifndef TAVMAP_TESTS_FORMATS_SCOPED_SYSTEM_CALLS_H
#define TAVMAP_TESTS_FORMATS_SCOPED_SYSTEM_CALLS_H

#include "formats/system_calls.h"

namespace formats_test {

class ScopedSystemCalls {
 public:
  ScopedSystemCalls() : before_(formats::systemCalls()) {}
  ~ScopedSystemCalls() { formats::systemCalls() = before_; }
  ScopedSystemCalls(const ScopedSystemCalls&) = delete;
  ScopedSystemCalls& operator=(const ScopedSystemCalls&) = delete;

 private:
  formats::SystemCalls before_;
};

}  // namespace formats_test

#endif
