// What the selection of large magnitudes tells beside them.
#ifndef TAVMAP_TAV_KERNEL_TAIL_COUNTS_H
#define TAVMAP_TAV_KERNEL_TAIL_COUNTS_H

#include <cstddef>

namespace tav::kernel {

struct TailCounts {
  std::size_t selected;  // magnitudes at the cut or above, infinity included
  std::size_t zeros, nans;
};

}  // namespace tav::kernel

#endif
