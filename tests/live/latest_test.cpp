#include "live/latest.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace {

using live::Latest;
using namespace std::chrono_literals;

// Works until it is called off.
int forever(const std::atomic<bool>& cancel) {
  while (!cancel) std::this_thread::yield();
  throw tav::Cancelled();
}

TEST(Latest, GivesWhatTheWorkGives) {
  Latest latest;
  EXPECT_EQ(latest.run([](const std::atomic<bool>& cancel) { return cancel ? 0 : 7; }), 7);
}

TEST(Latest, CallsOffWhatIsUnderWay) {
  Latest latest;
  std::promise<void> begun;
  auto first = std::async(std::launch::async, [&] {
    return latest.run([&](const std::atomic<bool>& cancel) {
      begun.set_value();
      return forever(cancel);
    });
  });
  begun.get_future().wait();
  EXPECT_EQ(latest.run([](const auto&) { return 2; }), 2);
  EXPECT_THROW(first.get(), tav::Cancelled);
}

TEST(Latest, WhoWaitsGivesWayToWhoComesLater) {
  Latest latest;
  std::promise<void> begun, release;
  auto first = std::async(std::launch::async, [&] {
    return latest.run([&](const auto&) {
      begun.set_value();
      release.get_future().wait();  // does not look at its flag for a while
      return 1;
    });
  });
  begun.get_future().wait();
  auto second = std::async(std::launch::async, [&] { return latest.run([](const auto&) { return 2; }); });
  std::this_thread::sleep_for(20ms);
  auto third = std::async(std::launch::async, [&] { return latest.run([](const auto&) { return 3; }); });
  EXPECT_THROW(second.get(), tav::Cancelled);
  release.set_value();
  EXPECT_EQ(first.get(), 1);
  EXPECT_EQ(third.get(), 3);
}

TEST(Latest, AShortLookWaitsAndCallsNothingOff) {
  Latest latest;
  std::promise<void> begun, release;
  auto first = std::async(std::launch::async, [&] {
    return latest.run([&](const std::atomic<bool>& cancel) {
      begun.set_value();
      release.get_future().wait();
      return cancel ? 0 : 1;
    });
  });
  begun.get_future().wait();
  auto look = std::async(std::launch::async, [&] { return latest.whenFree([] { return 5; }); });
  EXPECT_EQ(look.wait_for(20ms), std::future_status::timeout);
  release.set_value();
  EXPECT_EQ(first.get(), 1);
  EXPECT_EQ(look.get(), 5);
}

TEST(Latest, GoesOnAfterWorkThatThrew) {
  Latest latest;
  EXPECT_THROW(latest.run([](const auto&) -> int { throw std::runtime_error("broken"); }),
               std::runtime_error);
  EXPECT_EQ(latest.run([](const auto&) { return 4; }), 4);
}

TEST(Latest, BeginsNothingAfterStop) {
  Latest latest;
  latest.stop();
  EXPECT_THROW(latest.run([](const auto&) { return 1; }), tav::Cancelled);
}

}  // namespace
