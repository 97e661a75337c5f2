#include "workbench/plugin_endpoints.h"

#include <nlohmann/json.hpp>

namespace workbench {
namespace {

Reply startSession(PluginDesk& desk, const Request& request) {
  const nlohmann::ordered_json body = request.json();
  desk.start(body.contains("record") && body["record"] == true);
  return emptyReply();
}

Reply takeAnswer(PluginDesk& desk, const Request& request) {
  desk.answer(request.json());
  return emptyReply();
}

Reply endSession(PluginDesk& desk) {
  desk.end();
  return emptyReply();
}

}  // namespace

std::vector<Route> pluginRoutes(PluginDesk& desk, EventHub& news) {
  return {{"GET", "/api/plugin", Access::kSession, kNoBody,
           [&](const Request&) { return jsonReply(desk.state()); }},
          {"GET", "/api/plugin/events", Access::kSession, kNoBody,
           [&](const Request&) { return eventReply(news.listen()); }},
          {"POST", "/api/plugin/start", Access::kToken, kSmallBody,
           [&](const Request& request) { return startSession(desk, request); }},
          {"POST", "/api/plugin/answer", Access::kToken, kSmallBody,
           [&](const Request& request) { return takeAnswer(desk, request); }},
          {"POST", "/api/plugin/end", Access::kToken, kSmallBody,
           [&](const Request&) { return endSession(desk); }}};
}

}  // namespace workbench
