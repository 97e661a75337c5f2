#include "workbench/bounded_stream.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace workbench {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kPiece = std::size_t{64} << 10U;
constexpr auto kPatienceAtTheEnd = 50ms;
constexpr std::size_t kReadAwayAtMost = std::size_t{4} << 20U;

}  // namespace

bool waitFor(socket_t socket, short event, std::chrono::milliseconds patience) {
  pollfd descriptor{socket, event, 0};
  const auto until = std::chrono::steady_clock::now() + patience;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
    const int ready = poll(&descriptor, 1, static_cast<int>(std::max(left, 0ms).count()));
    if (ready > 0) return true;
    if (ready == 0 || errno != EINTR) return false;
  }
}

BoundedStream::BoundedStream(socket_t socket, const ServerBounds& bounds)
    : socket_(socket),
      bounds_(bounds),
      readUntil_(Clock::now() + bounds.headTime),
      mayRead_(bounds.headBytes) {}

void BoundedStream::beginBody(std::size_t bytes) {
  readUntil_ = Clock::now() + bounds_.bodyTime;
  mayRead_ = bytes;
}

void BoundedStream::finish() {
  shutdown(socket_, SHUT_WR);
  for (std::size_t bytes = 0; bytes < kReadAwayAtMost && waitFor(socket_, POLLIN, kPatienceAtTheEnd);) {
    const ssize_t count = recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
    if (count <= 0) return;
    bytes += static_cast<std::size_t>(count);
  }
}

bool BoundedStream::is_readable() const {
  return begin_ < end_ || waitFor(socket_, POLLIN, 0ms);
}

bool BoundedStream::is_writable() const {
  char byte = 0;
  const ssize_t count = recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  const bool isThere = count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK));
  return isThere && waitFor(socket_, POLLOUT, bounds_.writeTime);
}

bool BoundedStream::fill() {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(readUntil_ - Clock::now());
  if (left <= 0ms || !waitFor(socket_, POLLIN, left)) return false;
  const ssize_t count = recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
  begin_ = 0;
  end_ = count > 0 ? static_cast<std::size_t>(count) : 0;
  return end_ > 0;
}

ssize_t BoundedStream::read(char* data, size_t bytes) {
  if (mayRead_ == 0 || (begin_ == end_ && !fill())) return -1;
  const std::size_t count = std::min({bytes, end_ - begin_, mayRead_});
  std::memcpy(data, buffer_.data() + begin_, count);
  begin_ += count;
  mayRead_ -= count;
  return static_cast<ssize_t>(count);
}

ssize_t BoundedStream::write(const char* data, size_t bytes) {
  if (!waitFor(socket_, POLLOUT, bounds_.writeTime)) return -1;
  return send(socket_, data, std::min(bytes, kPiece), MSG_NOSIGNAL | MSG_DONTWAIT);
}

// Nothing here depends on who connects: it is this machine.
void BoundedStream::get_remote_ip_and_port(std::string&, int&) const {}
void BoundedStream::get_local_ip_and_port(std::string&, int&) const {}

}  // namespace workbench
