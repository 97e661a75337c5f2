#include "workbench/start_endpoints.h"

#include <nlohmann/json.hpp>

#include "workbench/content_types.h"
#include "workbench/page_files.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr const char* kNoPage =
    "This program was built without the page of the workbench. Build it with Node and the packages of web/.";

Reply pageReply(const PageFile& file) {
  Reply reply;
  reply.type = file.contentType;
  reply.body = file.text;
  return reply;
}

Route pageRoute(std::string path, Handler handler) {
  return {"GET", std::move(path), Access::kEverybody, kNoBody, std::move(handler)};
}

Json startJson(const FolderGuard& folders, const StartWords& words) {
  Json list = Json::array();
  for (const AllowedFolder& folder : folders.folders())
    list.push_back({{"name", folder.name}, {"path", folder.path.string()}});
  return {{"version", words.version}, {"folders", list},      {"explore", words.explore},
          {"plugin", words.plugin},   {"bids", words.bids}, {"ssh", words.ssh}};
}

Reply beginSession(const AccessGuard& access, const Request& request) {
  Reply reply = emptyReply();
  reply.headers = {{"Set-Cookie", access.cookieFor(textOf(request.json(), "token"))}};
  return reply;
}

Json entryJson(const FolderEntry& entry) {
  Json json{{"name", entry.name}, {"kind", entry.isFolder ? "folder" : "file"}};
  if (!entry.isFolder) json["bytes"] = entry.bytes;
  return json;
}

Reply listFolder(const FolderGuard& folders, const Request& request) {
  const fs::path path = folders.resolved(request.queryText("folder"), request.queryText("path"));
  if (!fs::is_directory(path)) throw Refusal(404, "This is no folder.");
  Json entries = Json::array();
  for (const FolderEntry& entry : folders.list(path)) entries.push_back(entryJson(entry));
  return jsonReply({{"entries", entries}});
}

// A pipe or a device would never come to its end.
Reply giveUserFile(const FolderGuard& folders, const Request& request) {
  Reply reply;
  reply.file = folders.resolved(request.part("folder"), request.part("path"));
  if (!fs::is_regular_file(reply.file)) throw Refusal(404, "This is no file.");
  reply.type = contentTypeOf(reply.file);
  reply.isFromUser = true;
  return reply;
}

}  // namespace

std::vector<Route> pageRoutes() {
  std::vector<Route> routes;
  for (const PageFile& file : pageFiles()) {
    const Handler handler = [&file](const Request&) { return pageReply(file); };
    routes.push_back(pageRoute("/" + std::string(file.name), handler));
    if (file.name == "workbench.html") routes.push_back(pageRoute("/", handler));
  }
  if (routes.empty()) routes.push_back(pageRoute("/", [](const Request&) { return problemReply(501, kNoPage); }));
  return routes;
}

std::vector<Route> startRoutes(const AccessGuard& access, const FolderGuard& folders, const StartWords& words) {
  return {{"POST", "/api/session", Access::kEverybody, kSmallBody,
           [&access](const Request& request) { return beginSession(access, request); }},
          {"GET", "/api/start", Access::kSession, kNoBody,
           [&folders, words](const Request&) { return jsonReply(startJson(folders, words)); }}};
}

std::vector<Route> fileRoutes(const FolderGuard& folders) {
  return {{"GET", "/api/files", Access::kSession, kNoBody,
           [&folders](const Request& request) { return listFolder(folders, request); }},
          {"GET", "/files/{folder}/{path...}", Access::kSession, kNoBody,
           [&folders](const Request& request) { return giveUserFile(folders, request); }}};
}

}  // namespace workbench
