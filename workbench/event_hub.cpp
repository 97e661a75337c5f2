#include "workbench/event_hub.h"

#include <nlohmann/json.hpp>

namespace workbench {

std::optional<std::string> EventStream::next(std::chrono::milliseconds patience) {
  std::unique_lock lock(mutex_);
  news_.wait_for(lock, patience, [this] { return ended_ || !waiting_.empty(); });
  if (waiting_.empty()) return std::nullopt;
  std::string event = std::move(waiting_.front());
  waiting_.pop_front();
  return event;
}

bool EventStream::hasEnded() const {
  const std::lock_guard lock(mutex_);
  return ended_ && waiting_.empty();
}

void EventStream::add(const std::string& event) {
  const std::lock_guard lock(mutex_);
  if (waiting_.size() == kMostWaiting) {
    waiting_.clear();
    ended_ = true;
  }
  if (!ended_) waiting_.push_back(event);
  news_.notify_all();
}

void EventStream::end() {
  const std::lock_guard lock(mutex_);
  ended_ = true;
  news_.notify_all();
}

std::shared_ptr<EventStream> EventHub::listen() {
  const std::lock_guard lock(mutex_);
  auto stream = std::make_shared<EventStream>();
  if (closed_) stream->end();
  std::erase_if(streams_, [](const auto& other) { return other.use_count() == 1 || other->hasEnded(); });
  if (streams_.size() == kMostStreams) {
    streams_.front()->end();
    streams_.pop_front();
  }
  streams_.push_back(stream);
  return stream;
}

void EventHub::publish(const nlohmann::ordered_json& event) {
  const std::string text = event.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  const std::lock_guard lock(mutex_);
  for (const auto& stream : streams_) stream->add(text);
}

void EventHub::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  for (const auto& stream : streams_) stream->end();
}

}  // namespace workbench
