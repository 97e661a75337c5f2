#include "study/interrupt.h"

#include <atomic>
#include <csignal>

namespace study {
namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal's handler sets it
std::atomic<int> guards = 0;

void noteInterrupt(int) {
  interrupted = true;
}

void handleWith(void (*handler)(int)) {
  interrupted = false;
  std::signal(SIGINT, handler);
  std::signal(SIGTERM, handler);
}

}  // namespace

InterruptGuard::InterruptGuard() {
  if (guards.fetch_add(1) == 0) handleWith(noteInterrupt);
}

InterruptGuard::~InterruptGuard() {
  if (guards.fetch_sub(1) == 1) handleWith(SIG_DFL);
}

bool interruptRequested() {
  return interrupted;
}

}  // namespace study
