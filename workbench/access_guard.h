// Who may talk to the workbench: pages that this very start has given to the browser, and nobody else on the machine
// or behind a name that points at it.
#ifndef TAVMAP_WORKBENCH_ACCESS_GUARD_H
#define TAVMAP_WORKBENCH_ACCESS_GUARD_H

#include <string>
#include <string_view>

#include "workbench/route_table.h"

namespace workbench {

// Of a request, before its body is read. Names of headers without a value are empty texts.
struct RequestHead {
  std::string method, path;
  std::string host, origin, cookie, token;  // headers Host, Origin, Cookie, X-Tavmap-Token
  std::string contentLength, contentType;
  std::string encoding;  // of the transfer and of the content
};

class AccessGuard {
 public:
  // port: of the server; cookies of other ports reach this one too, so the name has it.
  explicit AccessGuard(int port);

  [[nodiscard]] const std::string& token() const { return token_; }

  // Throws Refusal 403 when the request is for another host (a name that was made to point here) or comes from a
  // page of elsewhere.
  void requireOwnPage(const RequestHead& head) const;
  // Throws Refusal 401 without the cookie, 403 without the token where one is wanted.
  void require(Access access, const RequestHead& head) const;

  // The header that gives the cookie to a page that says the token. Throws Refusal 403.
  [[nodiscard]] std::string cookieFor(std::string_view token) const;

 private:
  [[nodiscard]] bool hasSession(std::string_view cookies) const;

  std::string port_, cookieName_;
  std::string token_, session_;
};

// Of a POST. Throws Refusal 411 for a body without a length, 400 for a length that is no number, 413 above the bound,
// 415 for what is no plain JSON: a form of another page cannot send that without being asked first.
void requireBodyWithin(std::size_t bound, const RequestHead& head);

}  // namespace workbench

#endif
