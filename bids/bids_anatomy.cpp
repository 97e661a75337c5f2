#include "bids/bids_anatomy.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "bids/bids_names.h"

namespace study {
namespace {

namespace fs = std::filesystem;

bool isAnatomyOf(const BidsName& name, const BidsName& run) {
  static const std::set<std::string> known = {"sub", "ses", "space", "res", "desc"};
  const std::string space = run.get("space");
  const bool isImage = name.extension == ".nii.gz" || name.extension == ".nii";
  if (name.suffix != "T1w" || !isImage || name.get("desc") != "preproc") return false;
  if (name.get("sub") != run.get("sub") || (name.has("ses") && name.get("ses") != run.get("ses")))
    return false;
  if (name.get("space") != (space == "T1w" ? "" : space)) return false;
  return std::all_of(name.entities.begin(), name.entities.end(),
                     [](const auto& entity) { return known.count(entity.first) > 0; });
}

fs::path anatomyIn(const fs::path& folder, const BidsName& run) {
  std::vector<fs::path> found;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored))
    if (isAnatomyOf(parseBidsName(entry.path().filename().string()), run)) found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  const auto same = std::find_if(found.begin(), found.end(), [&run](const fs::path& file) {
    return parseBidsName(file.filename().string()).get("res") == run.get("res");
  });
  if (same != found.end()) return *same;
  return found.empty() ? fs::path() : found.front();
}

}  // namespace

fs::path findAnatomy(const BidsRun& run) {
  if (!run.name.has("space")) return {};
  const fs::path above = run.bold.parent_path().parent_path();
  const fs::path own = anatomyIn(above / "anat", run.name);
  const bool isSession = !run.name.get("ses").empty() && above.filename() == "ses-" + run.name.get("ses");
  return own.empty() && isSession ? anatomyIn(above.parent_path() / "anat", run.name) : own;
}

}  // namespace study
