#include "workbench/access_guard.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <limits>

#include "workbench/secret.h"

namespace workbench {
namespace {

// The value of one cookie of "a=1; b=2".
std::string_view cookieOf(std::string_view cookies, std::string_view name) {
  while (!cookies.empty()) {
    const std::size_t end = std::min(cookies.find(';'), cookies.size());
    const std::string_view cookie = cookies.substr(0, end);
    if (cookie.starts_with(name) && cookie.substr(name.size()).starts_with('='))
      return cookie.substr(name.size() + 1);
    cookies.remove_prefix(std::min(end + 1, cookies.size()));
    while (cookies.starts_with(' ')) cookies.remove_prefix(1);
  }
  return {};
}

std::size_t lengthOf(const std::string& text) {
  std::size_t length = 0;
  const char* const end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, length);
  if (error == std::errc::result_out_of_range) return std::numeric_limits<std::size_t>::max();
  if (error != std::errc() || at != end) throw Refusal(400, "Content-Length is no number of bytes.");
  return length;
}

}  // namespace

AccessGuard::AccessGuard(int port)
    : port_(std::to_string(port)),
      cookieName_("tavmap_" + port_),
      token_(newSecret()),
      session_(newSecret()) {}

void AccessGuard::requireOwnPage(const RequestHead& head) const {
  const bool isHost = head.host == "127.0.0.1:" + port_ || head.host == "localhost:" + port_;
  if (!isHost)
    throw Refusal(403, fmt::format("This is no host of the workbench. Open http://127.0.0.1:{}/.", port_));
  if (!head.origin.empty() && head.origin != "http://" + head.host)
    throw Refusal(403, "A page of elsewhere asks. Only the workbench's own page may.");
}

bool AccessGuard::hasSession(std::string_view cookies) const {
  return isSameSecret(cookieOf(cookies, cookieName_), session_);
}

void AccessGuard::require(Access access, const RequestHead& head) const {
  if (access == Access::kEverybody || access == Access::kKnownAddress) return;
  if (!hasSession(head.cookie))
    throw Refusal(401, "The page has no session. Open the whole address that tavmap workbench has printed.");
  if (access == Access::kToken && !isSameSecret(head.token, token_))
    throw Refusal(
        403, "The page's token is not that of this start. Open the address that tavmap workbench printed.");
}

std::string AccessGuard::cookieFor(std::string_view token) const {
  if (!isSameSecret(token, token_))
    throw Refusal(403,
                  "The token is not that of this start. Open the address that tavmap workbench printed.");
  return fmt::format("{}={}; Path=/; HttpOnly; SameSite=Strict", cookieName_, session_);
}

void requireBodyWithin(std::size_t bound, const RequestHead& head) {
  if (head.contentLength.empty() && head.encoding.empty() && head.method == "GET") return;
  if (head.contentLength.empty()) throw Refusal(411, "A body needs a Content-Length.");
  if (lengthOf(head.contentLength) > bound)
    throw Refusal(413, fmt::format("The body is too large: {} takes {} bytes.", head.path, bound));
  const bool isJson = head.contentType.starts_with("application/json");
  if (head.method == "POST" && (!isJson || !head.encoding.empty()))
    throw Refusal(415, "The body must be JSON as it is: Content-Type application/json, no encoding.");
}

}  // namespace workbench
