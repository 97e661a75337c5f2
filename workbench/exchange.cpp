#include "workbench/exchange.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

// Names of files may be of any bytes; JSON has Unicode alone.
std::string dumped(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string Request::queryText(const std::string& name) const {
  const auto found = query.find(name);
  return found == query.end() ? "" : found->second;
}

Json Request::json() const {
  Json json = Json::parse(body, nullptr, false);
  if (!json.is_object())
    throw Refusal(400, fmt::format("The body of {} is no JSON object. Send one.", path));
  return json;
}

Reply jsonReply(const Json& json, int status) {
  Reply reply;
  reply.status = status;
  reply.body = dumped(json);
  return reply;
}

Reply binaryReply(std::string bytes) {
  Reply reply;
  reply.type = "application/octet-stream";
  reply.body = std::move(bytes);
  return reply;
}

Reply eventReply(std::shared_ptr<EventStream> events) {
  Reply reply;
  reply.type = "text/event-stream";
  reply.events = std::move(events);
  return reply;
}

Reply emptyReply() {
  Reply reply;
  reply.status = 204;
  return reply;
}

Reply problemReply(int status, const std::string& message) {
  return jsonReply({{"message", message}}, status);
}

std::string textOf(const Json& object, const char* key) {
  if (!object.contains(key) || !object[key].is_string())
    throw Refusal(400, fmt::format("\"{}\" is missing, or no text. Send it.", key));
  return object[key].get<std::string>();
}

std::string textOr(const Json& object, const char* key, const std::string& otherwise) {
  return object.contains(key) && !object[key].is_null() ? textOf(object, key) : otherwise;
}

}  // namespace workbench
