#include "workbench/plugin_endpoints.h"

#include <filesystem>
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

// It was named at the start, in whatever folder.
Reply giveAnatomy(const PluginDesk& desk) {
  Reply reply;
  reply.file = desk.anatomy();
  if (!std::filesystem::is_regular_file(reply.file)) throw Refusal(404, "The session has no anatomy.");
  reply.type = "application/octet-stream";
  reply.isFromUser = true;
  return reply;
}

}  // namespace

std::vector<Route> pluginRoutes(PluginDesk& desk, EventHub& news) {
  return {{"GET", "/api/plugin", Access::kSession, kNoBody,
           [&](const Request&) { return jsonReply(desk.state()); }},
          {"GET", "/api/plugin/events", Access::kSession, kNoBody,
           [&](const Request&) { return eventReply(news.listen()); }},
          {"GET", "/api/plugin/anatomy", Access::kSession, kNoBody,
           [&](const Request&) { return giveAnatomy(desk); }},
          {"POST", "/api/plugin/start", Access::kToken, kSmallBody,
           [&](const Request& request) { return startSession(desk, request); }},
          {"POST", "/api/plugin/answer", Access::kToken, kSmallBody,
           [&](const Request& request) { return takeAnswer(desk, request); }},
          {"POST", "/api/plugin/end", Access::kToken, kSmallBody,
           [&](const Request&) { return endSession(desk); }}};
}

}  // namespace workbench
