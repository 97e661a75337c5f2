#include "workbench/dispatcher.h"

#include <algorithm>
#include <exception>

#include "formats/file_error.h"
#include "request/problem.h"

namespace workbench {
namespace {

// Nothing but what this server gives; pictures may also be made by the page itself.
constexpr const char* kPagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; font-src 'self' data:; "
    "connect-src 'self'; worker-src 'self' blob:; frame-src 'self'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'none'";

// A report brings its own script and style and loads nothing. The sandbox takes it the page's rights: it cannot
// ask this server for anything.
constexpr const char* kFilePolicy =
    "sandbox allow-scripts allow-downloads; default-src 'none'; img-src data:; style-src 'unsafe-inline'; "
    "script-src 'unsafe-inline'; base-uri 'none'; form-action 'none'; frame-ancestors 'self'";

template <typename Action>
Reply replyOf(Action action) {
  try {
    return action();
  } catch (const Refusal& refusal) {
    return problemReply(refusal.status, refusal.what());
  } catch (const study::InputError& error) {
    return problemReply(400, error.what());
  } catch (const formats::FileError& error) {
    return problemReply(error.fault() == formats::Fault::kInput ? 400 : 500, error.what());
  } catch (const std::exception& error) {
    return problemReply(500, error.what());
  }
}

// A name that no file of ours has, and that ends texts of the system early.
void requirePlainText(const std::string& path) {
  const auto isControl = [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; };
  if (path.empty() || path.front() != '/' || std::any_of(path.begin(), path.end(), isControl))
    throw Refusal(400, "The path has characters that no path has.");
}

}  // namespace

std::optional<Reply> Dispatcher::refusal(const RequestHead& head) const {
  const Reply reply = replyOf([&] {
    guard_.requireOwnPage(head);
    requirePlainText(head.path);
    Request request;
    request.path = head.path;
    const Route& route = routes_.find(head.method, request);
    guard_.require(route.access, head);
    requireBodyWithin(route.bodyBound, head);
    return emptyReply();
  });
  return reply.status == 204 ? std::nullopt : std::optional(reply);
}

Reply Dispatcher::answer(const std::string& method, Request request) const {
  return replyOf([&] {
    const Route& route = routes_.find(method, request);
    return route.handler(request);
  });
}

std::map<std::string, std::string> securityHeaders(const Reply& reply) {
  return {{"Content-Security-Policy", reply.isFromUser ? kFilePolicy : kPagePolicy},
          {"X-Content-Type-Options", "nosniff"},
          {"X-Frame-Options", reply.isFromUser ? "SAMEORIGIN" : "DENY"},
          {"Referrer-Policy", "no-referrer"},
          {"Cross-Origin-Opener-Policy", "same-origin"},
          {"Cross-Origin-Resource-Policy", "same-origin"},
          {"Cache-Control", "no-store"}};
}

}  // namespace workbench
