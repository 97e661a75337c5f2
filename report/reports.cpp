#include "report/reports.h"

#include <fmt/core.h>

#include <algorithm>

#include "formats/atomic_file.h"
#include "report/connectome_page.h"
#include "report/group_page.h"
#include "report/index_page.h"
#include "report/report.h"
#include "report/study_outputs.h"
#include "request/problem.h"

namespace report {
namespace {

namespace fs = std::filesystem;

struct RequestPlace {
  fs::path folder;
  std::string prefix;
};

bool isLookedInto(const fs::path& folder) {
  const std::string name = folder.filename().string();
  return !name.starts_with(".") && name != "work" && name != "figures";
}

void addPlaces(const fs::path& folder, std::vector<RequestPlace>& places) {
  for (const std::string& prefix : prefixesIn(folder)) places.push_back({folder, prefix});
  std::vector<fs::path> below;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.is_directory() && !entry.is_symlink() && isLookedInto(entry.path()))
      below.push_back(entry.path());
  std::sort(below.begin(), below.end());
  for (const fs::path& next : below) addPlaces(next, places);
}

bool hasRequests(const fs::path& folder) {
  std::vector<RequestPlace> places;
  addPlaces(folder, places);
  return !places.empty();
}

// Of this folder and those below it.
std::vector<std::string> connectomePages(const fs::path& folder) {
  std::vector<std::string> pages;
  if (!fs::is_directory(folder)) return pages;
  for (const std::string& prefix : connectomesIn(folder))
    pages.push_back(writeConnectomePage(folder, prefix));
  std::vector<fs::path> below;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.is_directory() && !entry.is_symlink() && isLookedInto(entry.path()))
      below.push_back(entry.path());
  std::sort(below.begin(), below.end());
  for (const fs::path& next : below)
    for (std::string& page : connectomePages(next)) pages.push_back(std::move(page));
  return pages;
}

std::vector<RequestPlace> placesBelow(const fs::path& folder) {
  std::vector<RequestPlace> places;
  if (fs::is_directory(folder)) addPlaces(folder, places);
  if (places.empty())
    throw study::InputError(
        fmt::format("no results (*_tavmap.json) in {} or below it; run `tavmap run` or `tavmap "
                    "bids` into it first",
                    folder.string()));
  return places;
}

std::string indexOver(const fs::path& folder, const std::vector<RequestPlace>& places) {
  std::vector<StudyOutputs> requests;
  for (const RequestPlace& place : places) requests.push_back(readStudyOutputs(place.folder, place.prefix));
  const std::string path = (folder / kIndexFile).string();
  formats::writeTextFile(path, indexPage(folder, requests), formats::Durability::kCached);
  return path;
}

}  // namespace

std::vector<std::string> rebuildReports(const fs::path& folder, int threads) {
  std::vector<std::string> pages = connectomePages(folder);
  if (!pages.empty() && !hasRequests(folder)) return pages;
  const std::vector<RequestPlace> places = placesBelow(folder);
  for (const RequestPlace& place : places) pages.push_back(writeReport(place.folder, place.prefix, threads));
  for (std::string& page : writeGroupReports(folder)) pages.push_back(std::move(page));
  if (places.size() > 1 || places[0].folder != folder) pages.push_back(indexOver(folder, places));
  return pages;
}

std::string writeIndex(const fs::path& folder) {
  return indexOver(folder, placesBelow(folder));
}

}  // namespace report
