#include "workbench/event_hub.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

namespace {

using namespace std::chrono_literals;
using workbench::EventHub;
using workbench::EventStream;

TEST(EventHub, TellsEveryListener) {
  EventHub hub;
  const auto one = hub.listen(), other = hub.listen();
  hub.publish({{"n", 1}});
  EXPECT_EQ(one->next(0ms), R"({"n":1})");
  EXPECT_EQ(other->next(0ms), R"({"n":1})");
  EXPECT_EQ(one->next(0ms), std::nullopt);
}

TEST(EventHub, WakesWhoWaits) {
  EventHub hub;
  const auto stream = hub.listen();
  std::thread publisher([&] { hub.publish({{"n", 1}}); });
  EXPECT_EQ(stream->next(60s), R"({"n":1})");
  publisher.join();
}

TEST(EventHub, EndsTheOldestStreamBeyondItsBound) {
  EventHub hub;
  std::vector<std::shared_ptr<EventStream>> streams;
  for (std::size_t i = 0; i <= EventHub::kMostStreams; ++i) streams.push_back(hub.listen());
  EXPECT_TRUE(streams[0]->hasEnded());
  EXPECT_FALSE(streams[1]->hasEnded());
}

TEST(EventHub, GivesUpAPageThatTakesNothing) {
  EventHub hub;
  const auto stream = hub.listen();
  for (std::size_t i = 0; i <= EventStream::kMostWaiting; ++i) hub.publish({{"n", i}});
  EXPECT_TRUE(stream->hasEnded());
  EXPECT_EQ(stream->next(0ms), std::nullopt);
}

TEST(EventHub, ClosedEndsAllAndThoseToCome) {
  EventHub hub;
  const auto stream = hub.listen();
  hub.close();
  EXPECT_TRUE(stream->hasEnded());
  EXPECT_TRUE(hub.listen()->hasEnded());
}

TEST(EventHub, SendsNamesThatAreNoUnicode) {
  EventHub hub;
  const auto stream = hub.listen();
  hub.publish({{"name", "\xff"}});
  EXPECT_EQ(stream->next(0ms), "{\"name\":\"\xEF\xBF\xBD\"}");
}

}  // namespace
