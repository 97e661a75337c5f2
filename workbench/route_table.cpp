#include "workbench/route_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>

namespace workbench {
namespace {

// Takes the text before the next slash, and the slash.
std::string_view takePart(std::string_view& rest) {
  const std::size_t slash = std::min(rest.find('/'), rest.size());
  const std::string_view part = rest.substr(0, slash);
  rest.remove_prefix(std::min(slash + 1, rest.size()));
  return part;
}

bool isName(std::string_view part) {
  return part.size() > 2 && part.front() == '{' && part.back() == '}';
}

bool takesTheRest(std::string_view part) {
  return isName(part) && part.ends_with("...}");
}

}  // namespace

bool fits(const std::string& pattern, const std::string& path, std::map<std::string, std::string>& parts) {
  std::string_view wanted = pattern, given = path;
  std::map<std::string, std::string> found;
  while (!wanted.empty()) {
    const std::string_view part = takePart(wanted);
    if (takesTheRest(part)) {
      found[std::string(part.substr(1, part.size() - 5))] = given;
      given = {};
      break;
    }
    const std::string_view value = takePart(given);
    if (isName(part) ? value.empty() : value != part) return false;
    if (isName(part)) found[std::string(part.substr(1, part.size() - 2))] = value;
  }
  if (!given.empty() || (path.ends_with('/') && !pattern.ends_with('/') && !pattern.ends_with("...}")))
    return false;
  parts = std::move(found);
  return true;
}

void RouteTable::add(std::vector<Route> routes) {
  for (Route& route : routes) routes_.push_back(std::move(route));
}

const Route& RouteTable::find(const std::string& method, Request& request) const {
  bool isKnownPath = false;
  for (const Route& route : routes_) {
    if (!fits(route.path, request.path, request.parts)) continue;
    if (route.method == method) return route;
    isKnownPath = true;
  }
  if (isKnownPath) throw Refusal(405, fmt::format("{} does not answer {}.", request.path, method));
  throw Refusal(404, fmt::format("There is no {} here.", request.path));
}

std::size_t RouteTable::largestBody() const {
  std::size_t largest = 0;
  for (const Route& route : routes_) largest = std::max(largest, route.bodyBound);
  return largest;
}

}  // namespace workbench
