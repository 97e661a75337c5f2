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

// The folder and those below it that may hold results, each before what lies in it, by name.
void addFolders(const fs::path& folder, std::vector<fs::path>& folders) {
  folders.push_back(folder);
  std::vector<fs::path> below;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.is_directory() && !entry.is_symlink() && isLookedInto(entry.path()))
      below.push_back(entry.path());
  std::sort(below.begin(), below.end());
  for (const fs::path& next : below) addFolders(next, folders);
}

// Where in or below the folder `prefixes` finds any.
std::vector<RequestPlace> placesIn(const fs::path& folder,
                                   std::vector<std::string> (*prefixes)(const fs::path&)) {
  std::vector<fs::path> folders;
  if (fs::is_directory(folder)) addFolders(folder, folders);
  std::vector<RequestPlace> places;
  for (const fs::path& one : folders)
    for (const std::string& prefix : prefixes(one)) places.push_back({one, prefix});
  return places;
}

std::vector<RequestPlace> placesBelow(const fs::path& folder) {
  std::vector<RequestPlace> places = placesIn(folder, prefixesIn);
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
  std::vector<fs::path> connectomes;
  for (const RequestPlace& place : placesIn(folder, connectomesIn))
    connectomes.push_back(place.folder / connectomePageOf(place.prefix));
  const std::string path = (folder / kIndexFile).string();
  formats::writeTextFile(path, indexPage(folder, requests, connectomes), formats::Durability::kCached);
  return path;
}

}  // namespace

std::vector<std::string> rebuildReports(const fs::path& folder, int threads) {
  std::vector<std::string> pages;
  for (const RequestPlace& place : placesIn(folder, connectomesIn))
    pages.push_back(writeConnectomePage(place.folder, place.prefix));
  if (!pages.empty() && placesIn(folder, prefixesIn).empty()) return pages;
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
