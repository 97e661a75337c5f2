// HTTP on the loopback interface, bounded in every direction: connections, bytes, time. The one door to the HTTP
// library.
#ifndef TAVMAP_WORKBENCH_HTTP_SERVER_H
#define TAVMAP_WORKBENCH_HTTP_SERVER_H

#include <chrono>
#include <cstddef>
#include <memory>

#include "workbench/dispatcher.h"

namespace workbench {

// A connection serves one request. More of them at a time than are in hand or wait are answered 503.
struct ServerBounds {
  std::size_t threads = 48;
  std::size_t connections = 96;
  std::size_t headBytes = std::size_t{16} << 10U;
  std::chrono::milliseconds headTime{10'000};   // until the head has come
  std::chrono::milliseconds bodyTime{60'000};   // and then the body
  std::chrono::milliseconds writeTime{30'000};  // for each 64 KB that the client takes
};

class HttpServer {
 public:
  // Takes the port, 0: any that is free, on 127.0.0.1 alone. Throws study::InputError when it cannot.
  explicit HttpServer(int port, const ServerBounds& bounds = {});
  ~HttpServer();  // stops
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  [[nodiscard]] int port() const;
  // Answers, on threads of its own, until stop(). Borrows the dispatcher. Once at most.
  void start(const Dispatcher& dispatcher);
  // Takes no more requests and waits for those in hand: their event streams must have been ended. May be repeated.
  void stop();

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace workbench

#endif
