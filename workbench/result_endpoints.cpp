#include "workbench/result_endpoints.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>
#include <set>

#include "formats/map_set.h"
#include "report/reports.h"
#include "report/study_outputs.h"
#include "workbench/content_types.h"
#include "workbench/group_list.h"
#include "workbench/map_set_reply.h"
#include "workbench/result_list.h"
#include "workbench/result_underlays.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr std::size_t kMostRequests = 1'000;

// The address of the index over all requests of a folder, where there is one.
Json indexAddress(const fs::path& folder, ReportKeys& keys) {
  if (!hasIndex(folder)) return nullptr;
  return fmt::format("reports/{}/{}", keys.keyOf(folder), report::kIndexFile);
}

Json folderJson(const fs::path& folder, const FolderGuard& folders, ReportKeys& keys) {
  const FolderGuard::Place place = folders.placeOf(folder);
  return {{"folder", place.folder},
          {"path", place.path},
          {"requests", report::prefixesIn(folder)},
          {"index", indexAddress(folder, keys)}};
}

fs::path placeIn(const FolderGuard& folders, const Request& request) {
  return folders.resolved(request.queryText("folder"), request.queryText("path"));
}

Reply listFolders(const FolderGuard& folders, ReportKeys& keys) {
  std::set<fs::path> found;  // allowed folders may lie in each other
  for (const AllowedFolder& allowed : folders.folders())
    for (const fs::path& folder : resultFoldersIn(allowed.path)) found.insert(folder);
  Json list = Json::array();
  for (const fs::path& folder : found) list.push_back(folderJson(folder, folders, keys));
  return jsonReply({{"folders", list}});
}

// Requests by participant, in the order of their names.
Json participantsOf(const Json& requests) {
  Json participants = Json::array();
  for (const Json& request : requests) {
    if (request["participant"].get_ref<const std::string&>().empty()) continue;
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
  Json requests = Json::array(), groups = Json::array();
  bool areAll = true;
  for (const fs::path& found : resultFoldersIn(folder)) {
    for (const std::string& prefix : report::prefixesIn(found))
      if ((areAll = requests.size() < kMostRequests)) requests.push_back(requestJson(found, prefix, folders));
    for (Json& group : groupsJson(found, folders)) groups.push_back(std::move(group));
  }
  return jsonReply({{"participants", participantsOf(requests)},
                    {"requests", requests},
                    {"groups", groups},
                    {"areAll", areAll}});
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

// Pages at or below the folder of the key, links out of it not followed.
Reply givePage(const FolderGuard& folders, const ReportKeys& keys, const Request& request) {
  const fs::path folder = keys.folderOf(request.part("key"));
  const FolderGuard::Place place = folders.placeOf(folder);
  const fs::path file = folders.resolved(place.folder, fs::path(place.path) / request.part("path"));
  if (!isAtOrBelow(file, folder) || file.extension() != ".html")
    throw Refusal(403, "This is no report page of the folder that the address is for.");
  if (!fs::is_regular_file(file)) throw Refusal(404, "This is no file.");
  Reply reply;
  reply.file = file;
  reply.type = contentTypeOf(file);
  reply.isFromUser = true;
  return reply;
}

}  // namespace

std::vector<Route> resultRoutes(const FolderGuard& folders, ReportKeys& keys) {
  return {{"GET", "/api/results", Access::kSession, kNoBody,
           [&](const Request&) { return listFolders(folders, keys); }},
          {"GET", "/api/results/list", Access::kSession, kNoBody,
           [&folders](const Request& request) { return listResults(folders, request); }},
          {"GET", "/api/results/underlays", Access::kSession, kNoBody,
           [&folders](const Request& request) { return listUnderlays(folders, request); }},
          {"GET", "/api/maps", Access::kSession, kNoBody,
           [&folders](const Request& request) { return giveMapSet(folders, request); }},
          {"GET", "/reports/{key}/{path...}", Access::kKnownAddress, kNoBody,
           [&](const Request& request) { return givePage(folders, keys, request); }}};
}

}  // namespace workbench
