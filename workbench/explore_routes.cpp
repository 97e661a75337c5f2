#include "workbench/explore_routes.h"

#include <cstring>
#include <nlohmann/json.hpp>

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

Reply cellsReply(const Explore& explore) {
  const std::vector<std::uint32_t> cells = explore.study()->cells;
  std::string bytes(cells.size() * sizeof(std::uint32_t), '\0');
  std::memcpy(bytes.data(), cells.data(), bytes.size());
  return binaryReply(std::move(bytes));
}

// "mean.nii.gz"
Reply imageReply(const Explore& explore, const std::string& file) {
  const std::string end = ".nii.gz";
  const bool isImage = file.size() > end.size() && file.ends_with(end);
  Reply reply;
  reply.file = explore.image(isImage ? file.substr(0, file.size() - end.size()) : file);
  reply.type = "application/octet-stream";
  return reply;
}

// With the place that Runs is told.
Reply savedReply(Explore& explore, const FolderGuard& folders, const Request& request) {
  Json saved = explore.save(request.json());
  const FolderGuard::Place place =
      folders.placeOf(std::filesystem::canonical(saved["path"].get<std::string>()));
  saved["place"] = {{"folder", place.folder}, {"path", place.path}};
  return jsonReply(saved);
}

}  // namespace

std::vector<Route> exploreRoutes(Explore& explore, const FolderGuard& folders) {
  return {
      {"GET", "/api/explore", Access::kSession, kNoBody,
       [&](const Request&) { return jsonReply(explore.state()); }},
      {"GET", "/api/explore/events", Access::kSession, kNoBody,
       [&](const Request&) { return eventReply(explore.events().listen()); }},
      {"GET", "/api/explore/voxels", Access::kSession, kNoBody,
       [&](const Request&) { return cellsReply(explore); }},
      {"GET", "/api/explore/image/{file}", Access::kSession, kNoBody,
       [&](const Request& request) { return imageReply(explore, request.part("file")); }},
      {"POST", "/api/explore/open", Access::kToken, kSmallBody,
       [&](const Request& request) {
         explore.open(textOf(request.json(), "id"));
         return jsonReply(explore.state(), kAccepted);
       }},
      {"POST", "/api/explore/settings", Access::kToken, kSmallBody,
       [&](const Request& request) {
         const bool changes = explore.change(request.json());
         return jsonReply(Json{{"loading", changes}}, changes ? kAccepted : 200);
       }},
      {"POST", "/api/explore/maps", Access::kToken, kLargeBody,
       [&](const Request& request) { return binaryReply(explore.maps(request.json())); }},
      {"POST", "/api/explore/voxel", Access::kToken, kLargeBody,
       [&](const Request& request) { return jsonReply(explore.voxel(request.json())); }},
      {"POST", "/api/explore/request", Access::kToken, kLargeBody,
       [&](const Request& request) { return savedReply(explore, folders, request); }},
  };
}

}  // namespace workbench
