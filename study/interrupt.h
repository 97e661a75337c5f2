// Being asked to stop.
#ifndef TAVMAP_STUDY_INTERRUPT_H
#define TAVMAP_STUDY_INTERRUPT_H

namespace study {

// Turns SIGINT and SIGTERM into a flag for the life of the object. Several share the flag, on any threads: it
// is cleared by the first and with the last, so that a study within a longer work takes no request from that.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;
};
[[nodiscard]] bool interruptRequested();

}  // namespace study

#endif
