#include "inference/sweep.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>

#include "inference/shuffle_worker.h"

namespace inference {

namespace {

// Hands out batches of shuffles; each thread has a worker of its own.
class Sweeper {
 public:
  explicit Sweeper(const SweepSetting& setting) : setting_(setting), last_(setting.shuffles.count()) {
    swept_.z.resize(last_ - 1);
    if (setting.options.enhance) swept_.enhanced.resize(last_ - 1);
    if (setting.options.clusterFormingZ > 0) swept_.mass.resize(last_ - 1);
    swept_.reached.assign(setting.places.slots(), 0);
  }

  Swept run() {
    std::vector<std::future<void>> others;
    for (int i = 1; i < setting_.options.threads; ++i)
      others.push_back(std::async(std::launch::async, [this] { work(); }));
    work();
    for (auto& other : others) other.get();
    return std::move(swept_);
  }

 private:
  void work() {
    ShuffleWorker worker(setting_);
    const std::size_t batch = ShuffleWorker::batch(setting_.options);
    for (std::size_t first = next_.fetch_add(batch); first < last_; first = next_.fetch_add(batch)) {
      const std::size_t count = std::min(batch, last_ - first);
      worker.run(first, count, swept_);
      tell(count);
    }
    const std::lock_guard lock(mutex_);
    for (std::size_t slot = 0; slot < swept_.reached.size(); ++slot)
      swept_.reached[slot] += worker.reached()[slot];
  }

  void tell(std::size_t count) {
    const std::lock_guard lock(mutex_);
    done_ += count;
    if (setting_.options.progress) setting_.options.progress(done_, last_ - 1);
  }

  const SweepSetting& setting_;
  std::size_t last_, done_ = 0;
  std::atomic<std::size_t> next_ = 1;
  std::mutex mutex_;
  Swept swept_;
};

}  // namespace

Swept sweep(const SweepSetting& setting) {
  return Sweeper(setting).run();
}

}  // namespace inference
