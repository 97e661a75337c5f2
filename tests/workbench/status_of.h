// Which status an action is refused with.
#ifndef TAVMAP_TESTS_WORKBENCH_STATUS_OF_H
#define TAVMAP_TESTS_WORKBENCH_STATUS_OF_H

#include "workbench/exchange.h"

// 0: it is not refused.
template <typename Action>
[[nodiscard]] int statusOf(Action action) {
  try {
    action();
    return 0;
  } catch (const workbench::Refusal& refusal) {
    return refusal.status;
  }
}

#endif
