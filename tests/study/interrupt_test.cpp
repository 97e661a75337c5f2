#include "study/interrupt.h"

#include <gtest/gtest.h>

#include <csignal>

namespace study {
namespace {

TEST(InterruptGuard, BeginsWithoutARequest) {
  {
    const InterruptGuard earlier;
    std::raise(SIGINT);
    EXPECT_TRUE(interruptRequested());
  }
  const InterruptGuard guard;
  EXPECT_FALSE(interruptRequested());
}

TEST(InterruptGuard, AnInnerOneLeavesTheRequestToTheOuter) {
  const InterruptGuard outer;
  {
    const InterruptGuard inner;
    std::raise(SIGTERM);
  }
  EXPECT_TRUE(interruptRequested());
  const InterruptGuard another;
  EXPECT_TRUE(interruptRequested());
}

// Without the handler the signal ends this process.
TEST(InterruptGuard, AnInnerOneLeavesTheHandler) {
  const InterruptGuard outer;
  { const InterruptGuard inner; }
  std::raise(SIGINT);
  EXPECT_TRUE(interruptRequested());
}

}  // namespace
}  // namespace study
