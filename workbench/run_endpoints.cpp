#include "workbench/run_endpoints.h"

#include <fmt/core.h>

#include <charconv>
#include <nlohmann/json.hpp>
#include <system_error>

#include "request/request_file.h"
#include "results/output_names.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr std::size_t kShownLines = 8;

Json outputsJson(const RunEntry& entry, const FolderGuard& folders) {
  const FolderGuard::Place place = folders.placeOf(entry.outputFolder);
  Json json{{"folder", place.folder}, {"path", place.path}, {"name", entry.outputName}, {"report", nullptr}};
  const std::string report = study::reportFileOf(entry.outputName);
  std::error_code ignored;
  if (fs::exists(entry.outputFolder / report, ignored)) json["report"] = report;
  return json;
}

int idOf(const Request& request) {
  const std::string& text = request.part("id");
  int id = 0;
  const auto [at, error] = std::from_chars(text.data(), text.data() + text.size(), id);
  if (error != std::errc() || at != text.data() + text.size())
    throw Refusal(404, fmt::format("There is no run {} here.", text));
  return id;
}

Reply listRuns(const RunDesk& desk, const FolderGuard& folders) {
  Json runs = Json::array();
  for (const RunEntry& entry : desk.runs()) runs.push_back(runJson(entry, folders));
  return jsonReply({{"runs", runs}});
}

Reply startRun(RunDesk& desk, const FolderGuard& folders, const Request& request) {
  const Json body = request.json();
  if (!body.contains("request") || !body["request"].is_object())
    throw Refusal(400, "\"request\" is missing: a folder and a path in it.");
  const Json& place = body["request"];
  const fs::path file = folders.resolved(textOf(place, "folder"), textOf(place, "path"));
  return jsonReply(runJson(desk.add(wantedRun(file, folders)), folders), 201);
}

void requireAllowed(const fs::path& folder, const FolderGuard& folders) {
  std::error_code error;
  const fs::path canonical = fs::weakly_canonical(fs::absolute(folder), error);
  if (error || folders.placeOf(canonical).folder.empty())
    throw Refusal(403, fmt::format("The request writes to {}, which is not in the folders of this workbench. "
                                   "Start it with --folder for that one.",
                                   folder.string()));
}

}  // namespace

Json runJson(const RunEntry& entry, const FolderGuard& folders) {
  const FolderGuard::Place request = folders.placeOf(entry.request);
  return {{"id", entry.id},
          {"title", entry.title},
          {"request", {{"folder", request.folder}, {"path", request.path}}},
          {"state", nameOf(entry.state)},
          {"progress", entry.progress},
          {"secondsLeft", entry.secondsLeft ? Json(*entry.secondsLeft) : Json()},
          {"message", entry.message},
          {"lines", lastLines(entry.log, kShownLines)},
          {"outputs", outputsJson(entry, folders)}};
}

RunEntry wantedRun(const fs::path& request, const FolderGuard& folders) {
  const study::Request read = study::readRequestFile(request);
  requireAllowed(read.output.folder, folders);
  if (!read.output.workFolder.empty()) requireAllowed(read.output.workFolder, folders);
  RunEntry entry;
  entry.title = request.filename().string();
  entry.request = request;
  entry.outputFolder = fs::weakly_canonical(fs::absolute(read.output.folder));
  entry.outputName = read.output.prefix;
  return entry;
}

std::vector<Route> runRoutes(RunDesk& desk, EventHub& news, const FolderGuard& folders) {
  return {{"GET", "/api/runs", Access::kSession, kNoBody,
           [&](const Request&) { return listRuns(desk, folders); }},
          {"GET", "/api/runs/events", Access::kSession, kNoBody,
           [&](const Request&) { return eventReply(news.listen()); }},
          {"POST", "/api/runs", Access::kToken, kSmallBody,
           [&](const Request& request) { return startRun(desk, folders, request); }},
          {"POST", "/api/runs/{id}/cancel", Access::kToken, kSmallBody,
           [&](const Request& request) {
             desk.cancel(idOf(request));
             return emptyReply();
           }},
          {"POST", "/api/runs/{id}/resume", Access::kToken, kSmallBody, [&](const Request& request) {
             desk.resume(idOf(request));
             return emptyReply();
           }}};
}

}  // namespace workbench
