#include "tests/calibration/library_run.h"

#include <cmath>
#include <cstdint>
#include <numeric>
#include <sstream>
#include <stdexcept>

#include "prepare/prepare.h"
#include "request/request_file.h"
#include "results/family_wise_findings.h"
#include "results/map_findings.h"
#include "study/engine_request.h"
#include "study/order_evidence.h"
#include "study/reference_job.h"
#include "tav/tav.h"

namespace calibration {
namespace {

// Keeps the maps of every reference.
class Keeper : public tav::RunObserver {
 public:
  explicit Keeper(const study::StudyPlan& plan) : plan_(plan) {}

  void onCondition(const tav::ConditionOutcome& outcome) override {
    for (const tav::MapOutcome& map : outcome.maps) {
      if (map.thresholds.empty()) continue;
      found_.push_back(
          {reference_, map.type, {map.values, map.values + outcome.status.size()}, map.thresholds});
      if (!map.nullP.empty()) found_.back().minusLogP = study::minusLogP(map, codesOf(outcome));
      const auto nulls = outcome.familyWise.find(map.type);
      if (nulls != outcome.familyWise.end()) judge({map.values, codesOf(outcome), nulls->second});
    }
  }
  void onVoi(const tav::TAV_VOI_Pars& /*voi*/) override { ++reference_; }

  [[nodiscard]] std::vector<FoundMap> take() { return std::move(found_); }

 private:
  [[nodiscard]] std::vector<std::uint8_t> codesOf(const tav::ConditionOutcome& outcome) const {
    const auto& coordinates = plan_.regions[reference_].coordinates;
    std::vector<bool> inReference(outcome.status.size(), false);
    for (std::size_t i = 0; i + 2 < coordinates.size(); i += 3)
      inReference[grid().size.index(coordinates[i], coordinates[i + 1], coordinates[i + 2])] = true;
    std::vector<std::uint8_t> codes;
    for (std::size_t i = 0; i < outcome.status.size(); ++i)
      codes.push_back(static_cast<std::uint8_t>(study::statusOf(outcome.status[i], true, inReference[i])));
    return codes;
  }
  void judge(const study::JudgedMap& map) {
    const auto result = study::familyWiseResult(map, study::clustersOf(map, grid()), grid(), {});
    for (const study::FamilyWiseLevel& level : result.levels) {
      if (level.alpha != study::kFamilyWiseAlpha) continue;
      found_.back().anyFamilyWise = level.voxelsPassing > 0;
      found_.back().anyCluster = level.clustersPassing > 0;
    }
  }
  [[nodiscard]] const study::Grid& grid() const { return plan_.runs[0].grid; }

  const study::StudyPlan& plan_;
  std::size_t reference_ = 0;
  std::vector<FoundMap> found_;
};

}  // namespace

bool FoundMap::passes(std::size_t voxel, std::size_t i) const {
  return thresholds[i].anyPasses() && values[voxel] != 0 &&
         std::abs(values[voxel]) >= thresholds[i].threshold;
}

LibraryRun::LibraryRun(const std::string& request, const std::filesystem::path& folder) {
  const study::Request parsed = study::parseRequest(request, "simulated data", folder);
  plan_ = study::planStudy(parsed, parsed.seed.value(), TAVMAP_VERSION);
  std::filesystem::create_directories(plan_.workFolder);
  for (const study::RunPlan& run : plan_.runs)
    study::prepareRun(run, plan_.workFolder, plan_.request.settings.inclusionThreshold, [](double) {});
}

std::vector<const study::Region*> LibraryRun::regions() const {
  std::vector<const study::Region*> all;
  for (const study::Region& region : plan_.regions) all.push_back(&region);
  return all;
}

int LibraryRun::orderBy(study::OrderChoice choice) const {
  const study::Settings& settings = plan_.request.settings;
  const tav::TAV_Pars pars =
      study::engineRequest(settings, settings.maxOrder, plan_.runs, plan_.conditions, regions(), "");
  return study::gatherOrderEvidence(pars, plan_.workFolder, settings.maxOrder, settings.orderSample)
      .best(choice);
}

std::vector<FoundMap> LibraryRun::compute(int order, const std::function<void(tav::RunOptions&)>& change) {
  study::settleOrder(plan_, order);
  tav::TAV_Pars pars = study::engineRequest(plan_.request.settings, plan_.order, plan_.runs, plan_.conditions,
                                            regions(), plan_.request.output.prefix);
  std::vector<std::size_t> all(plan_.regions.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  tav::RunOptions options = study::referenceOptions(plan_, all);
  options.fweDraws = 0;  // the false discovery rate alone is measured, and whole maps take most of the time
  options.nullP = false;
  if (change) change(options);
  Keeper keeper(plan_);
  std::ostringstream errors;
  tav::Computer computer(options, &keeper);
  if (computer.computeTAVs(pars, errors) != tav::kSuccess) throw std::runtime_error(errors.str());
  return keeper.take();
}

}  // namespace calibration
