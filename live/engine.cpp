#include "live/engine.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "live/kept_store.h"
#include "live/outcome_taker.h"
#include "request/problem.h"
#include "study/engine_request.h"
#include "study/usable_region.h"
#include "tav/family_wise.h"
#include "tav/map_values.h"
#include "tav/tav.h"

namespace live {
namespace {

using study::StudyPlan;

tav::RunOptions optionsFor(const LoadedStudy& study, const StudyPlan& plan, Care care, int threads,
                           const std::atomic<bool>& cancel) {
  tav::RunOptions options = study::engineOptions(plan.request.settings);
  const std::uint32_t seed = study::seedOf(plan, 0);
  options.timeBase = seed;
  options.voiTimeBases = {seed};
  options.treatments = study.treatments;
  options.loadedVtcs = study.vtcs;
  options.threads = threads;
  options.cancel = &cancel;
  options.fweDraws = 0;
  options.nullZ = options.searchCurve = false;
  if (care == Care::kFull) return options;
  options.nullDraws = 1;
  options.nullP = false;
  return options;
}

// A draft's thresholds are provisional, so fewer surrogates do, whose making takes a fifth of its time.
constexpr std::int32_t kDraftSurrogates = 250;

void run(const tav::TAV_Pars& pars, const tav::RunOptions& options, OutcomeTaker& taker,
         tav::RawResult& stores, std::vector<std::vector<float>>& maps) {
  std::ostringstream errors;
  KeptStore store(maps);
  tav::Computer computer(options, &taker, &store);
  computer.reuse(stores);
  const int status = computer.computeTAVs(pars, errors);
  if (status == tav::kInvalidParameters) throw study::InputError(errors.str());
  if (status != tav::kSuccess) throw study::RunError(errors.str());
}

std::array<double, 3> middleOf(const study::Region& region, const study::Grid& grid) {
  std::array<double, 3> sum{};
  for (int voxel = 0; voxel < region.voxels(); ++voxel) {
    const std::int32_t* const at = &region.coordinates[3 * static_cast<std::size_t>(voxel)];
    const std::array<double, 3> mm = grid.toMm({at[0], at[1], at[2]});
    for (std::size_t axis = 0; axis < 3; ++axis) sum[axis] += mm[axis] / region.voxels();
  }
  return sum;
}

void describe(const LoadedStudy& study, const study::UsableRegion& usable, LiveMaps& maps) {
  const study::Grid& grid = study.plan.space.grid;
  maps.reference = usable.region.name;
  maps.voxels = static_cast<std::size_t>(usable.region.voxels());
  maps.mm = middleOf(usable.region, grid);
  maps.notes = usable.region.notes;
  maps.notes.insert(maps.notes.end(), usable.notes.begin(), usable.notes.end());
  maps.isReference.assign(study.cells.size(), false);
  for (std::size_t i = 0; i < maps.voxels; ++i) {
    const std::int32_t* const at = &usable.region.coordinates[3 * i];
    const auto cell = static_cast<std::uint32_t>(grid.size.index(at[0], at[1], at[2]));
    const auto found = std::lower_bound(study.cells.begin(), study.cells.end(), cell);
    if (found != study.cells.end() && *found == cell)
      maps.isReference[static_cast<std::size_t>(found - study.cells.begin())] = true;
  }
}

// Raw null measures of a voxel, a draw each. before: included voxels ahead of it in the grid.
std::vector<tav::RawValues> drawsOf(const tav::RawResult& stores, std::size_t cell, std::size_t before) {
  const tav::rawTAVMaps& first = *stores.null;
  std::vector<tav::RawValues> draws{
      {{first.values(0) + cell, first.values(1) + cell, first.values(2) + cell}, 1}};
  if (stores.furtherNulls == nullptr) return draws;
  for (const tav::FurtherNulls::Block& block : stores.furtherNulls->blocks()) {
    if (before >= block.nrOfVoxels()) {
      before -= block.nrOfVoxels();
      continue;
    }
    for (std::size_t draw = 0; draw < stores.furtherNulls->drawsPerVoxel(); ++draw)
      draws.push_back(
          {{block.draw(0, draw) + before, block.draw(1, draw) + before, block.draw(2, draw) + before}, 1});
    break;
  }
  return draws;
}

}  // namespace

Engine::Engine(std::shared_ptr<const LoadedStudy> study, int threads)
    : study_(std::move(study)), threads_(threads) {}

LiveMaps Engine::compute(const Ask& ask, Care care, const std::atomic<bool>& cancel) {
  const StudyPlan plan = planFor(*study_, ask);
  const study::UsableRegion usable = study::usableRegion(
      plan, 0, [this](const study::RunPlan& run) { return study_->coursesOf(run); },
      [this](const study::RunPlan& run) { return study_->shifts.at(run.vtcName); });
  LiveMaps maps;
  maps.ask = ask;
  maps.care = care;
  describe(*study_, usable, maps);
  tav::TAV_Pars pars = study::engineRequest(plan.request.settings, plan.order, plan.runs, plan.conditions,
                                            {&usable.region}, plan.request.output.prefix);
  pars.showVerboseProgress = false;
  if (care == Care::kDraft) pars.nSurrogateSims = std::min(pars.nSurrogateSims, kDraftSurrogates);
  if (care == Care::kFull) lastFull_.reset();
  OutcomeTaker taker(*study_, maps);
  run(pars, optionsFor(*study_, plan, care, threads_, cancel), taker,
      care == Care::kFull ? fullStores_ : draftStores_, maps_);
  if (care == Care::kFull) {
    lastFull_ = ask;
    lastPars_ = pars;
    lastStatus_ = maps.status;
  }
  return maps;
}

std::vector<float> Engine::nullValues(const Ask& ask, std::size_t index, tav::MapType type) const {
  if (!lastFull_ || !(*lastFull_ == ask)) return {};
  const auto isSkipped = [](tav::VoxelStatus status) { return status == tav::VoxelStatus::kBelowInclusion; };
  if (isSkipped(lastStatus_.at(index))) return {};
  const auto end = lastStatus_.begin() + static_cast<std::ptrdiff_t>(index);
  const auto skipped = std::count_if(lastStatus_.begin(), end, isSkipped);
  const std::size_t before = index - static_cast<std::size_t>(skipped);
  std::vector<float> values;
  for (const tav::RawValues& draw : drawsOf(fullStores_, study_->cells[index], before))
    tav::computeMapValues(tav::nullKindOf(type), draw, lastPars_, &values.emplace_back());
  return values;
}

}  // namespace live
