#include "tests/calibration/library_run.h"

#include <cmath>
#include <numeric>
#include <sstream>
#include <stdexcept>

#include "prepare/prepare.h"
#include "request/request_file.h"
#include "study/engine_request.h"
#include "study/order_evidence.h"
#include "study/reference_job.h"
#include "tav/tav.h"

namespace calibration {
namespace {

// Keeps the maps of every reference.
class Keeper : public tav::RunObserver {
 public:
  void onCondition(const tav::ConditionOutcome& outcome) override {
    for (const tav::MapOutcome& map : outcome.maps) {
      if (map.thresholds.empty()) continue;
      found_.push_back(
          {reference_, map.type, {map.values, map.values + outcome.status.size()}, map.thresholds});
    }
  }
  void onVoi(const tav::TAV_VOI_Pars& /*voi*/) override { ++reference_; }

  [[nodiscard]] std::vector<FoundMap> take() { return std::move(found_); }

 private:
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
  if (change) change(options);
  Keeper keeper;
  std::ostringstream errors;
  tav::Computer computer(options, &keeper);
  if (computer.computeTAVs(pars, errors) != tav::kSuccess) throw std::runtime_error(errors.str());
  return keeper.take();
}

}  // namespace calibration
