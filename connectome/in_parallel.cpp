#include "connectome/in_parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace connectome {
namespace {

struct SharedItems {
  std::size_t items;
  const std::function<ItemWorker()>& makeWorker;
  const std::function<void(std::size_t)>& done;
  std::atomic<std::size_t> next{0};
  std::size_t finished = 0;
  std::mutex mutex{};
  std::exception_ptr failure{};

  void work() noexcept {
    try {
      const ItemWorker worker = makeWorker();
      for (std::size_t item = next++; item < items; item = next++) {
        worker(item);
        const std::lock_guard<std::mutex> lock(mutex);
        if (done) done(++finished);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) failure = std::current_exception();
      next = items;
    }
  }
};

}  // namespace

void inParallel(std::size_t items, int threads, const std::function<ItemWorker()>& makeWorker,
                const std::function<void(std::size_t)>& done) {
  SharedItems shared{items, makeWorker, done};
  {
    std::vector<std::jthread> others;
    const std::size_t most = std::min(items, static_cast<std::size_t>(std::max(1, threads)));
    for (std::size_t i = 1; i < most; ++i) others.emplace_back([&shared] { shared.work(); });
    shared.work();
  }
  if (shared.failure) std::rethrow_exception(shared.failure);
}

}  // namespace connectome
