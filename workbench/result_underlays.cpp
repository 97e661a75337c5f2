#include "workbench/result_underlays.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/file_error.h"
#include "report/study_outputs.h"
#include "request/problem.h"
#include "request/request_file.h"
#include "results/output_names.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

// A request that is not there, or of another version, names none.
fs::path anatomyNamedIn(const fs::path& requestFile) {
  try {
    return fs::exists(requestFile) ? study::readRequestFile(requestFile).anatomy : fs::path();
  } catch (const study::InputError&) {
    return {};
  } catch (const formats::FileError&) {
    return {};
  }
}

// What is elsewhere, or gone, is left out.
void addUnderlay(const fs::path& file, const char* words, const FolderGuard& folders, Json& list) {
  if (file.empty()) return;
  try {
    const FolderGuard::Place place = folders.placeOf(folders.resolvedPath(fs::absolute(file)));
    list.push_back({{"folder", place.folder}, {"path", place.path}, {"words", words}});
  } catch (const Refusal&) {
    return;
  }
}

}  // namespace

Json underlaysOf(const fs::path& folder, const std::string& prefix, const FolderGuard& folders) {
  const std::vector<std::string> known = report::prefixesIn(folder);
  if (std::find(known.begin(), known.end(), prefix) == known.end())
    throw Refusal(404, fmt::format("There are no results of \"{}\" in this folder.", prefix));
  Json list = Json::array();
  addUnderlay(anatomyNamedIn(folder / study::requestFileOf(prefix)), "the anatomy of the request", folders,
              list);
  addUnderlay(folder / study::anatomyName(prefix), "the anatomy on the grid of the runs", folders, list);
  addUnderlay(folder / study::meanVolumeName(prefix), "the mean image of the first run", folders, list);
  return list;
}

}  // namespace workbench
