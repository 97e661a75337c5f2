#include <fmt/core.h>

#include <algorithm>
#include <map>

#include "formats/file_error.h"
#include "formats/table.h"
#include "request/nearest_name.h"
#include "request/problem.h"
#include "study/connectome_series.h"
#include "study/usable_region.h"

namespace study {
namespace {

// The column "network" of label tables, by names of labels.
class NetworkColumns {
 public:
  std::string networkOf(const RegionSource& source) {
    if (source.table.empty()) return "";
    const auto& networks = read(source.table.string());
    const auto found = networks.find(source.labelName);
    return found == networks.end() ? "" : found->second;
  }

 private:
  const std::map<std::string, std::string>& read(const std::string& table) {
    const auto [at, isNew] = tables_.try_emplace(table);
    if (!isNew) return at->second;
    try {
      const formats::Table rows = formats::Table::read(table);
      const auto name = rows.find("name"), network = rows.find("network");
      for (std::size_t row = 0; name && network && row < rows.rows(); ++row)
        if (!formats::isMissing(rows.cell(row, *network)))
          at->second[rows.cell(row, *name)] = rows.cell(row, *network);
    } catch (const formats::FileError&) {  // another form of table, which has no such column
    }
    return at->second;
  }

  std::map<std::string, std::map<std::string, std::string>> tables_;
};

std::array<double, 3> centreOf(const Region& region, const Grid& grid) {
  std::array<double, 3> mean{};
  for (std::size_t i = 0; i < region.coordinates.size(); ++i)
    mean[i % 3] += region.coordinates[i] / static_cast<double>(region.voxels());
  return formats::apply(grid.affine, mean);
}

}  // namespace

ConnectomeNodes connectomeNodes(const StudyPlan& plan) {
  ConnectomeNodes all;
  NetworkColumns networks;
  for (std::size_t i = 0; i < plan.regions.size(); ++i) {
    const Region& planned = plan.regions[i];
    UsableRegion usable;
    try {
      usable = usableRegion(plan, i);
    } catch (const InputError& error) {
      all.undefined.push_back(planned.name);
      usable.region.name = planned.name;
      usable.notes = {error.what()};
    }
    std::string network = networks.networkOf(planned.source);
    if (network.empty()) network = connectome::networkInName(planned.name);
    all.nodes.push_back({planned.name, network, usable.region.voxels(), centreOf(planned, plan.space.grid)});
    all.notes.insert(all.notes.end(), planned.notes.begin(), planned.notes.end());
    all.notes.insert(all.notes.end(), usable.notes.begin(), usable.notes.end());
    all.regions.push_back(std::move(usable.region));
  }
  return all;
}

GivenNames givenNames(const StudyPlan& plan) {
  GivenNames given;
  std::vector<std::string> names;
  for (const Region& region : plan.regions) names.push_back(region.name);
  for (const std::string& name : plan.request.connectome.conditionOn) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (name == kGlobalSignal) {
      given.globalSignal = true;
    } else if (name == kAllOthers) {
      given.allOthers = true;
    } else if (found != names.end()) {
      given.regions.push_back(static_cast<std::size_t>(found - names.begin()));
    } else {
      throw InputError(
          fmt::format("{}: 'condition_on' names '{}', which is no reference of the request{}; write \"{}\", "
                      "\"{}\" or names of "
                      "references",
                      plan.request.title, name, suggestion(name, names), kGlobalSignal, kAllOthers));
    }
  }
  return given;
}

}  // namespace study
