// News for pages: what one side publishes, every listening page is sent as a server-sent event. Any thread may call
// anything here.
#ifndef TAVMAP_WORKBENCH_EVENT_HUB_H
#define TAVMAP_WORKBENCH_EVENT_HUB_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace workbench {

// What one page still has to be told.
class EventStream {
 public:
  static constexpr std::size_t kMostWaiting = 256;

  // The oldest event, as JSON; waits for one. None after `patience`, or when the stream has ended.
  [[nodiscard]] std::optional<std::string> next(std::chrono::milliseconds patience);
  // Nothing will come any more: the page asks anew, and finds the present state.
  [[nodiscard]] bool hasEnded() const;

  // A page that takes nothing is given up rather than kept in memory.
  void add(const std::string& event);
  void end();

 private:
  mutable std::mutex mutex_;
  std::condition_variable news_;
  std::deque<std::string> waiting_;
  bool ended_ = false;
};

class EventHub {
 public:
  // Each stream takes a thread of the server: beyond so many the oldest ends.
  static constexpr std::size_t kMostStreams = 8;

  ~EventHub() { close(); }
  [[nodiscard]] std::shared_ptr<EventStream> listen();
  void publish(const nlohmann::ordered_json& event);
  // Ends all streams, and those that come later.
  void close();

 private:
  std::mutex mutex_;
  std::list<std::shared_ptr<EventStream>> streams_;
  bool closed_ = false;
};

}  // namespace workbench

#endif
