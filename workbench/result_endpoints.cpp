#include "workbench/result_endpoints.h"

#include <nlohmann/json.hpp>
#include <set>

#include "formats/map_set.h"
#include "report/study_outputs.h"
#include "workbench/map_set_reply.h"
#include "workbench/result_list.h"
#include "workbench/result_underlays.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr std::size_t kMostRequests = 1'000;

Json nullableText(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

// The index over all requests of a folder, where a report was written.
std::string indexIn(const fs::path& folder) {
  std::error_code ignored;
  return fs::exists(folder / "index.html", ignored) ? "index.html" : "";
}

Json folderJson(const fs::path& folder, const FolderGuard& folders) {
  const FolderGuard::Place place = folders.placeOf(folder);
  return {{"folder", place.folder},
          {"path", place.path},
          {"requests", report::prefixesIn(folder)},
          {"index", nullableText(indexIn(folder))}};
}

fs::path placeIn(const FolderGuard& folders, const Request& request) {
  return folders.resolved(request.queryText("folder"), request.queryText("path"));
}

Reply listFolders(const FolderGuard& folders) {
  std::set<fs::path> found;  // allowed folders may lie in each other
  for (const AllowedFolder& allowed : folders.folders())
    for (const fs::path& folder : resultFoldersIn(allowed.path)) found.insert(folder);
  Json list = Json::array();
  for (const fs::path& folder : found) list.push_back(folderJson(folder, folders));
  return jsonReply({{"folders", list}});
}

// Requests by participant, in the order of their names.
Json participantsOf(const Json& requests) {
  Json participants = Json::array();
  for (const Json& request : requests) {
    if (request["participant"] == "") continue;
    if (participants.empty() || participants.back()["participant"] != request["participant"])
      participants.push_back(
          {{"participant", request["participant"]}, {"requests", 0}, {"references", 0}, {"failures", 0}});
    Json& row = participants.back();
    row["requests"] = row["requests"].get<int>() + 1;
    row["references"] = row["references"].get<std::size_t>() + request["references"].size();
    row["failures"] = row["failures"].get<std::size_t>() + request["failures"].size();
  }
  return participants;
}

Reply listResults(const FolderGuard& folders, const Request& request) {
  const fs::path folder = placeIn(folders, request);
  Json requests = Json::array();
  bool areAll = true;
  for (const fs::path& found : resultFoldersIn(folder))
    for (const std::string& prefix : report::prefixesIn(found))
      if ((areAll = requests.size() < kMostRequests)) requests.push_back(requestJson(found, prefix, folders));
  return jsonReply({{"participants", participantsOf(requests)}, {"requests", requests}, {"areAll", areAll}});
}

Reply listUnderlays(const FolderGuard& folders, const Request& request) {
  const fs::path folder = placeIn(folders, request);
  if (!fs::is_directory(folder)) throw Refusal(404, "This is no folder.");
  return jsonReply({{"underlays", underlaysOf(folder, request.queryText("name"), folders)}});
}

// A pipe or a device would never come to its end.
Reply giveMapSet(const FolderGuard& folders, const Request& request) {
  const fs::path file = placeIn(folders, request);
  if (!fs::is_regular_file(file)) throw Refusal(404, "This is no file.");
  return binaryReply(encodedMapSet(formats::loadMapSet(file.string())));
}

}  // namespace

std::vector<Route> resultRoutes(const FolderGuard& folders) {
  return {{"GET", "/api/results", Access::kSession, kNoBody,
           [&folders](const Request&) { return listFolders(folders); }},
          {"GET", "/api/results/list", Access::kSession, kNoBody,
           [&folders](const Request& request) { return listResults(folders, request); }},
          {"GET", "/api/results/underlays", Access::kSession, kNoBody,
           [&folders](const Request& request) { return listUnderlays(folders, request); }},
          {"GET", "/api/maps", Access::kSession, kNoBody,
           [&folders](const Request& request) { return giveMapSet(folders, request); }}};
}

}  // namespace workbench
