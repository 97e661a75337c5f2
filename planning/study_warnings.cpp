#include <fmt/core.h>

#include <algorithm>
#include <map>

#include "planning/machine.h"
#include "planning/study_table.h"

namespace planning {
namespace {

namespace fs = std::filesystem;

void addOnce(const std::string& warning, std::vector<std::string>& warnings) {
  const bool isKnown = std::find(warnings.begin(), warnings.end(), warning) != warnings.end();
  if (!warning.empty() && !isKnown) warnings.push_back(warning);
}

void addCautions(const Surveyed& one, bool isAlone, std::vector<std::string>& warnings) {
  if (!one.plan) return;
  const std::string begin = isAlone ? "" : one.request.title + ": ";
  for (std::size_t region = 0; region < one.plan->regions.size(); ++region)
    for (const std::string& caution : study::cautionsOf(*one.plan, region))
      addOnce(begin + caution, warnings);
}

// What goes into each folder; folders that share their space are told together, under the name of the first.
std::map<fs::path, double> needsByFolder(const StudyTable& table) {
  std::map<fs::path, double> needs;
  const auto add = [&](const fs::path& folder, double megabytes) {
    const auto sharing = std::find_if(needs.begin(), needs.end(),
                                      [&](const auto& need) { return shareSpace(need.first, folder); });
    (sharing == needs.end() ? needs[folder] : sharing->second) += megabytes;
  };
  for (std::size_t i = 0; i < table.requests.size(); ++i) {
    if (!table.requests[i].plan) continue;
    add(table.requests[i].plan->request.output.folder, table.expenses[i].outMegabytes);
    add(table.requests[i].plan->workFolder, table.expenses[i].workMegabytes);
  }
  return needs;
}

}  // namespace

std::string memoryWarning(double neededMegabytes, int jobs, double machine) {
  if (machine <= 0 || neededMegabytes * jobs <= machine) return "";
  return fmt::format(
      "{} workers of up to {:.0f} MB each want more than the {:.0f} MB of this machine; give fewer --jobs",
      jobs, neededMegabytes, machine);
}

std::string diskWarning(const fs::path& folder, double needed, double free) {
  if (free < 0 || needed <= free) return "";
  return fmt::format(
      "about {:.0f} MB will be written where {} lies, and {:.0f} MB are free there; free some space or "
      "give other folders",
      needed, folder.string(), free);
}

void collectWarnings(StudyTable& table) {
  for (const Surveyed& one : table.requests) addCautions(one, table.requests.size() == 1, table.warnings);
  addOnce(memoryWarning(largestOf(table.expenses).workerMegabytes, table.jobs, machineMegabytes()),
          table.warnings);
  for (const auto& [folder, megabytes] : needsByFolder(table))
    addOnce(diskWarning(folder, megabytes, freeMegabytes(folder)), table.warnings);
}

}  // namespace planning
