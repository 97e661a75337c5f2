#include "study/interrupt.h"

#include <csignal>

namespace study {
namespace {

volatile std::sig_atomic_t interrupted = 0;
void noteInterrupt(int) {
  interrupted = 1;
}

}  // namespace

InterruptGuard::InterruptGuard() {
  interrupted = 0;
  std::signal(SIGINT, noteInterrupt);
  std::signal(SIGTERM, noteInterrupt);
}

InterruptGuard::~InterruptGuard() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  interrupted = 0;
}

bool interruptRequested() {
  return interrupted != 0;
}

}  // namespace study
