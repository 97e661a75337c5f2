#include "workbench/http_server.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <httplib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <utility>

#include "request/problem.h"
#include "workbench/bounded_stream.h"
#include "workbench/http_conversion.h"

namespace workbench {
namespace {

constexpr const char* kLoopback = "127.0.0.1";
constexpr int kBacklog = 256;

// The connection that this thread has in hand is one too many.
thread_local bool tooMany = false;

// Threads for connections. The HTTP library hands over connections as tasks that know their socket; one too
// many is carried out at once, by the thread that accepts, which tells the client so.
class BoundedQueue : public httplib::TaskQueue {
 public:
  explicit BoundedQueue(const ServerBounds& bounds) : most_(bounds.connections), pool_(bounds.threads) {}

  void enqueue(std::function<void()> task) override {
    if (inHand_.fetch_add(1) < most_) {
      pool_.enqueue([this, task = std::move(task)] { carryOut(task); });
      return;
    }
    tooMany = true;
    carryOut(task);
    tooMany = false;
  }
  void shutdown() override { pool_.shutdown(); }

 private:
  void carryOut(const std::function<void()>& task) {
    task();
    --inHand_;
  }

  std::size_t most_;
  std::atomic<std::size_t> inHand_ = 0;
  httplib::ThreadPool pool_;
};

void turnAway(socket_t socket) {
  const std::string text = tooManyText();
  char unread[4096];
  while (recv(socket, unread, sizeof unread, MSG_DONTWAIT) > 0) {
  }
  if (send(socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT) > 0) ::shutdown(socket, SHUT_WR);
}

// A restarted workbench takes its port back at once; but two at a time never share one, and programs that are
// started do not keep it.
void ownTheAddress(socket_t socket) {
  fcntl(socket, F_SETFD, FD_CLOEXEC);
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

}  // namespace

class HttpServer::Implementation : public httplib::Server {
 public:
  Implementation(int port, const ServerBounds& bounds) : bounds_(bounds) {
    set_socket_options(ownTheAddress);
    set_tcp_nodelay(true);
    new_task_queue = [bounds] { return new BoundedQueue(bounds); };  // the library deletes it
    port_ = port != 0 ? (bind_to_port(kLoopback, port) ? port : -1) : bind_to_any_port(kLoopback);
    if (port_ <= 0)
      throw study::InputError(
          fmt::format("port {} of {} cannot be taken; give another with --port, or none", port, kLoopback));
    ::listen(svr_sock_, kBacklog);  // the library's own backlog is five
  }

  [[nodiscard]] int port() const { return port_; }

  void start(const Dispatcher& dispatcher) {
    setRoutes(dispatcher);
    listening_ = std::thread([this] { listen_after_bind(); });
    while (!is_running()) std::this_thread::yield();
  }

  void end() {
    stop();
    if (listening_.joinable()) listening_.join();
  }

 private:
  // All is settled before the library reads a body; what it reads then goes through one route.
  void setRoutes(const Dispatcher& dispatcher) {
    set_payload_max_length(dispatcher.largestBody());
    set_pre_routing_handler([&dispatcher](const httplib::Request& from, httplib::Response& to) {
      std::optional<Reply> refusal = dispatcher.refusal(headOf(from));
      if (refusal) giveReply(std::move(*refusal), to);
      if (!refusal && from.method == "GET") giveReply(dispatcher.answer(from.method, requestOf(from)), to);
      const bool isAnswered = refusal || from.method == "GET";
      return isAnswered ? HandlerResponse::Handled : HandlerResponse::Unhandled;
    });
    Post(".*", [&dispatcher](const httplib::Request& from, httplib::Response& to) {
      giveReply(dispatcher.answer(from.method, requestOf(from)), to);
    });
    set_error_handler([](const httplib::Request&, httplib::Response& to) { explainStatus(to); });
  }

  bool process_and_close_socket(socket_t socket) override {
    fcntl(socket, F_SETFD, FD_CLOEXEC);  // a run that is started lives longer than a connection
    const bool done = !tooMany && serve(socket);
    if (tooMany) turnAway(socket);
    close(socket);
    return done;
  }

  bool serve(socket_t socket) {
    BoundedStream stream(socket, bounds_);
    bool closed = false;
    const bool done = process_request(stream, true, closed, [&stream](httplib::Request& request) {
      stream.beginBody(lengthOfBody(request));
      leaveOutExtras(request);
    });
    stream.finish();
    return done;
  }

  ServerBounds bounds_;
  int port_ = 0;
  std::thread listening_;
};

HttpServer::HttpServer(int port, const ServerBounds& bounds)
    : implementation_(std::make_unique<Implementation>(port, bounds)) {}
HttpServer::~HttpServer() {
  stop();
}

int HttpServer::port() const {
  return implementation_->port();
}
void HttpServer::start(const Dispatcher& dispatcher) {
  implementation_->start(dispatcher);
}
void HttpServer::stop() {
  implementation_->end();
}

}  // namespace workbench
