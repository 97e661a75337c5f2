// One computation at a time, of which the newest wins.
#ifndef TAVMAP_LIVE_LATEST_H
#define TAVMAP_LIVE_LATEST_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "tav/at_once.h"

namespace live {

// Whoever comes calls off what is under way, and whoever still waits gives way to whoever comes later. The
// lock is held for bookkeeping alone, never while work is done.
class Latest {
 public:
  // Returns work(cancel) when its turn comes; `cancel` becomes true when it is to stop, by throwing
  // tav::Cancelled. Throws tav::Cancelled when another one came before it began, or after stop().
  template <class Work>
  auto run(Work work) {
    std::atomic<bool> cancel = false;
    const Turn turn(*this, cancel);
    return work(cancel);
  }
  // Returns work() when nothing is under way, without calling anything off: for short looks at what was found. Throws
  // tav::Cancelled after stop().
  template <class Work>
  auto whenFree(Work work) {
    std::atomic<bool> ignored = false;
    const Turn turn(*this, ignored, Turn::kPatient);
    return work();
  }
  // Calls off what is under way and lets nobody begin any more.
  void stop() {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    if (current_ != nullptr) *current_ = true;
    free_.notify_all();
  }

 private:
  class Turn {
   public:
    static constexpr bool kPatient = true;
    Turn(Latest& latest, std::atomic<bool>& cancel, bool isPatient = false) : latest_(latest) {
      isPatient ? latest_.wait(cancel) : latest_.begin(cancel);
    }
    ~Turn() { latest_.end(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    Latest& latest_;
  };

  void begin(std::atomic<bool>& cancel) {
    std::unique_lock lock(mutex_);
    const std::uint64_t own = ++newest_;
    if (current_ != nullptr) *current_ = true;
    free_.notify_all();  // those who wait find that they are not the newest
    free_.wait(lock, [&] { return current_ == nullptr || newest_ != own || isStopped_; });
    if (newest_ != own || isStopped_) throw tav::Cancelled();
    current_ = &cancel;
  }
  void wait(std::atomic<bool>& cancel) {
    std::unique_lock lock(mutex_);
    free_.wait(lock, [&] { return current_ == nullptr || isStopped_; });
    if (isStopped_) throw tav::Cancelled();
    current_ = &cancel;
  }
  void end() {
    const std::lock_guard lock(mutex_);
    current_ = nullptr;
    free_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable free_;
  std::atomic<bool>* current_ = nullptr;  // of the work under way
  std::uint64_t newest_ = 0;
  bool isStopped_ = false;
};

}  // namespace live

#endif
