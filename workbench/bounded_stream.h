// A connection as the HTTP library reads and writes it, with an end to its patience.
#ifndef TAVMAP_WORKBENCH_BOUNDED_STREAM_H
#define TAVMAP_WORKBENCH_BOUNDED_STREAM_H

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include "workbench/http_server.h"

namespace workbench {

class BoundedStream : public httplib::Stream {
 public:
  // Borrows the socket.
  BoundedStream(socket_t socket, const ServerBounds& bounds);

  // The head has come; so many bytes of body may follow.
  void beginBody(std::size_t bytes);
  // Says that nothing more will be sent, and reads away for a moment what the client still sends: closing before
  // that would take the reply from it.
  void finish();

  [[nodiscard]] bool is_readable() const override;
  [[nodiscard]] bool is_writable() const override;  // false once the client has gone
  ssize_t read(char* data, size_t bytes) override;
  ssize_t write(const char* data, size_t bytes) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  [[nodiscard]] socket_t socket() const override { return socket_; }

 private:
  using Clock = std::chrono::steady_clock;
  bool fill();

  socket_t socket_;
  ServerBounds bounds_;
  Clock::time_point readUntil_;
  std::size_t mayRead_;
  std::array<char, 16384> buffer_{};
  std::size_t begin_ = 0, end_ = 0;
};

// Waits for POLLIN or POLLOUT. False when the time is over.
[[nodiscard]] bool waitFor(socket_t socket, short event, std::chrono::milliseconds patience);

}  // namespace workbench

#endif
