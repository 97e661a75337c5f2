#include "workbench/explore_requests.h"

#include <fmt/core.h>

#include <algorithm>

#include "bids/bids_study.h"
#include "request/request_file.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;
using study::ReferenceKind;
using study::ReferenceRequest;

ReferenceRequest atlasEntry(const ExploreSources& sources) {
  ReferenceRequest entry;
  entry.kind = ReferenceKind::kLabels;
  entry.image = sources.atlas;
  entry.table = sources.atlasTable;
  entry.allLabels = true;
  return entry;
}

// References of a request are not explored one by one: its first label image is the atlas, unless one was
// named.
void takeSources(const ExploreSources& sources, const fs::path& output, study::Request& request) {
  const auto isAtlas = [](const ReferenceRequest& entry) { return entry.kind == ReferenceKind::kLabels; };
  const auto found = std::find_if(request.references.begin(), request.references.end(), isAtlas);
  std::vector<ReferenceRequest> references;
  if (!sources.atlas.empty())
    references.push_back(atlasEntry(sources));
  else if (found != request.references.end())
    references.push_back(*found);
  if (!references.empty()) {
    references[0].allLabels = true;
    references[0].labels.clear();
  }
  request.references = references;
  if (!sources.anatomy.empty()) request.anatomy = sources.anatomy;
  if (!sources.workFolder.empty()) request.output.workFolder = sources.workFolder;
  if (!output.empty())
    request.output.folder = output;
  else if (sources.request.empty())
    request.output.folder = sources.workFolder / "results";
}

study::Request requestOfFiles(const ExploreSources& sources) {
  study::Request request;
  request.title = sources.bold.filename().string();
  request.output.prefix = "explored";
  study::RunRequest run;
  run.name = "run";
  run.bold = sources.bold;
  run.mask = sources.mask;
  run.events = sources.events;
  run.confounds = sources.confounds;
  run.trSeconds = sources.trSeconds;
  if (!run.confounds.empty()) run.confoundTerms = {"6motion"};
  request.runs = {run};
  study::ConditionRequest whole;
  whole.name = "whole";
  whole.parts = {{run.name, run.name, {}}};
  request.conditions = {whole};
  return request;
}

// Something has to be there for a data set to become requests; what it is plays no part.
study::RequestTemplate templateWithReference() {
  study::RequestTemplate made;
  ReferenceRequest entry;
  entry.kind = ReferenceKind::kSphere;
  entry.name = "stand-in";
  entry.radiusMm = 1;
  made.references = {entry};
  return made;
}

std::vector<study::Request> requestsOfDataSet(const ExploreSources& sources, const fs::path& output) {
  study::BidsOptions options;
  options.bidsDir = sources.bids;
  options.outDir = output.empty() ? sources.workFolder / "results" : output;
  options.workDir = sources.workFolder;
  options.atlas = sources.atlas;
  options.atlasTable = sources.atlasTable;
  options.anatomy = sources.anatomy;
  if (sources.atlas.empty()) options.configuration = templateWithReference();
  return study::bidsRequests(options).requests;
}

}  // namespace

std::vector<ExploreChoice> exploreChoices(const ExploreSources& sources, const fs::path& output) {
  std::vector<study::Request> requests;
  if (!sources.request.empty())
    requests = {study::readRequestFile(sources.request)};
  else if (!sources.bold.empty())
    requests = {requestOfFiles(sources)};
  else if (!sources.bids.empty())
    requests = requestsOfDataSet(sources, output);
  std::vector<ExploreChoice> choices;
  for (study::Request& request : requests) {
    takeSources(sources, output, request);
    const std::string words = fs::path(request.title).filename().string();
    choices.push_back({std::to_string(choices.size()), words, std::move(request)});
  }
  return choices;
}

}  // namespace workbench
