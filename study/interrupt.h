// Being asked to stop.
#ifndef TAVMAP_STUDY_INTERRUPT_H
#define TAVMAP_STUDY_INTERRUPT_H

namespace study {

// Turns SIGINT and SIGTERM into a flag for the life of the object. One at a time.
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
