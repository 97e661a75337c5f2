// Items shared out among threads.
#ifndef TAVMAP_CONNECTOME_IN_PARALLEL_H
#define TAVMAP_CONNECTOME_IN_PARALLEL_H

#include <cstddef>
#include <functional>

namespace connectome {

using ItemWorker = std::function<void(std::size_t item)>;

// Calls a worker of each thread's own for every item 0 ... items - 1; which thread gets which item is open.
// makeWorker is called once on each thread. done: called after every item, one call at a time, with the
// number of finished ones; may be empty. The first exception ends all and is thrown again.
void inParallel(std::size_t items, int threads, const std::function<ItemWorker()>& makeWorker,
                const std::function<void(std::size_t)>& done = {});

}  // namespace connectome

#endif
