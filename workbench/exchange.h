// What an endpoint is given and what it gives back, without sockets: endpoints are plain functions of these
// two.
#ifndef TAVMAP_WORKBENCH_EXCHANGE_H
#define TAVMAP_WORKBENCH_EXCHANGE_H

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace workbench {

class EventStream;

// Statuses that endpoints give themselves.
inline constexpr int kAccepted = 202, kBadRequest = 400, kConflict = 409;

// Thrown by endpoints: the status and, in words, what is wrong, where, and what to do.
struct Refusal : std::runtime_error {
  Refusal(int code, const std::string& message) : std::runtime_error(message), status(code) {}
  int status;
};

struct Request {
  std::string path;                          // decoded, without the query
  std::map<std::string, std::string> query;  // decoded; of several of one name the first
  std::map<std::string, std::string> parts;  // what the route's "{name}" stand for
  std::string body;

  // Empty when it is not given.
  [[nodiscard]] std::string queryText(const std::string& name) const;
  // Of a name that the route has. Throws std::out_of_range for another one.
  [[nodiscard]] const std::string& part(const std::string& name) const { return parts.at(name); }
  // The body, a JSON object. Throws Refusal 400 for anything else.
  [[nodiscard]] nlohmann::ordered_json json() const;
};

// Exactly one of body, file and events is what is sent.
struct Reply {
  int status = 200;
  std::string type = "application/json; charset=utf-8";
  std::string body;
  std::filesystem::path file;           // a regular file, sent piece by piece
  std::shared_ptr<EventStream> events;  // server-sent events until the stream ends
  std::vector<std::pair<std::string, std::string>> headers;
  bool isFromUser = false;  // a file of the user, which gets no rights of the page
};

[[nodiscard]] Reply jsonReply(const nlohmann::ordered_json& json, int status = 200);
[[nodiscard]] Reply binaryReply(std::string bytes);
[[nodiscard]] Reply eventReply(std::shared_ptr<EventStream> events);
[[nodiscard]] Reply emptyReply();  // 204
// {"message": ...}
[[nodiscard]] Reply problemReply(int status, const std::string& message);

using Handler = std::function<Reply(const Request&)>;

// Members of a JSON object from a page. All throw Refusal 400 when one is missing or of another kind.
[[nodiscard]] std::string textOf(const nlohmann::ordered_json& object, const char* key);
[[nodiscard]] std::string textOr(const nlohmann::ordered_json& object, const char* key,
                                 const std::string& otherwise);

}  // namespace workbench

#endif
