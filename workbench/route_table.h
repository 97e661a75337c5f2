// Which endpoints there are: one row each.
#ifndef TAVMAP_WORKBENCH_ROUTE_TABLE_H
#define TAVMAP_WORKBENCH_ROUTE_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

#include "workbench/exchange.h"

namespace workbench {

// Who may call an endpoint, beyond what holds for all (access_guard.h).
enum class Access {
  kEverybody,     // the page itself, which carries nothing of the user's
  kKnownAddress,  // whoever knows the address, which holds a secret (report_keys.h): the endpoint looks at it
  kSession,       // whoever has the cookie
  kToken          // whoever has the cookie and says the token: all that changes something
};

// Most bytes of a body.
inline constexpr std::size_t kNoBody = 0;
inline constexpr std::size_t kSmallBody = std::size_t{64} << 10U;
inline constexpr std::size_t kLargeBody = std::size_t{8} << 20U;  // lists of voxels

struct Route {
  std::string method;  // "GET" or "POST"
  std::string path;    // "/api/runs/{id}/cancel"; a last "{name...}" takes the rest, of several parts too
  Access access;
  std::size_t bodyBound;
  Handler handler;
};

class RouteTable {
 public:
  void add(Route route) { routes_.push_back(std::move(route)); }
  void add(std::vector<Route> routes);

  // The route of a request; fills request.parts. Throws Refusal 404 for a path that none has, 405 for a
  // method that this path has not.
  [[nodiscard]] const Route& find(const std::string& method, Request& request) const;
  [[nodiscard]] std::size_t largestBody() const;

 private:
  std::vector<Route> routes_;
};

// Whether a path fits a route's; `parts` gets what the names in braces stand for.
[[nodiscard]] bool fits(const std::string& pattern, const std::string& path,
                        std::map<std::string, std::string>& parts);

}  // namespace workbench

#endif
