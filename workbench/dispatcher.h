// From a request to its reply: may it be asked, who answers, and what an exception becomes.
#ifndef TAVMAP_WORKBENCH_DISPATCHER_H
#define TAVMAP_WORKBENCH_DISPATCHER_H

#include <map>
#include <optional>
#include <string>

#include "workbench/access_guard.h"
#include "workbench/route_table.h"

namespace workbench {

class Dispatcher {
 public:
  // Borrows both.
  Dispatcher(const RouteTable& routes, const AccessGuard& guard) : routes_(routes), guard_(guard) {}

  // Before the body is read: the refusal, or none when the request is to be answered.
  [[nodiscard]] std::optional<Reply> refusal(const RequestHead& head) const;
  // Precondition: refusal() has none for its head. Never throws.
  [[nodiscard]] Reply answer(const std::string& method, Request request) const;
  [[nodiscard]] std::size_t largestBody() const { return routes_.largestBody(); }

 private:
  const RouteTable& routes_;
  const AccessGuard& guard_;
};

// Headers that go with every reply: what the page may load and do, and that nothing is kept.
[[nodiscard]] std::map<std::string, std::string> securityHeaders(const Reply& reply);

}  // namespace workbench

#endif
