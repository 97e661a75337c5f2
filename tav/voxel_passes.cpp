#include "tav/voxel_passes.h"

#include <algorithm>
#include <utility>

#include "tav/loaded_loop.h"
#include "tav/tav.h"

namespace tav {
namespace {

// What the results of companions may take: more would leave the processor's cache before their turn
// comes, and cost more than a pass of their own. And how many there are at most: beyond these a
// further one saves little.
constexpr std::size_t kCompanionBytes = std::size_t{32} << 20U;
constexpr std::size_t kMostCompanions = 7;

// The element's index, or the list's size when it is none of the list's.
template <class T>
std::size_t indexOf(const std::vector<T>& list, const T& element) {
  const auto found = std::find_if(list.begin(), list.end(), [&](const T& one) { return &one == &element; });
  return static_cast<std::size_t>(found - list.begin());
}

}  // namespace

int VoxelPasses::compute(const TAV_Pars& request, const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                         VoxelPath& path, RawResult& result, std::ostream& errors) {
  const std::size_t voiIndex = indexOf(request.vois, voi), condIndex = indexOf(request.conds, cond);
  const bool isKnown = voiIndex < request.vois.size() && condIndex < request.conds.size();
  if (isKnown && takeResult(voiIndex, condIndex, result)) {
    reportLoopDone(request, log_);
    return kSuccess;
  }
  if (isKnown && condIndex == 0) {
    startGroup(request, voiIndex);
  } else if (!isKnown || !continuesGroup(voiIndex, condIndex)) {
    companions_.clear();
  }
  std::vector<PassReference> references{{coursesOf(voi, cond), &random_}};
  std::vector<RawResult*> results{&result};
  for (Companion& companion : companions_) {
    references.push_back({coursesOf(request.vois[companion.voi], cond), &companion.random});
    results.push_back(&companion.results.emplace_back(makeResult(request)));
  }
  const ConditionJobs condition = makeConditionJobs(cond, references, request, options_);
  const int status = runLoop(condition, request, path, results, errors);
  for (Companion& companion : companions_) companion.results.back().after = companion.random;
  if (status == kSuccess && voiIndex == 0 && condIndex == condsNoted_) noteFirst(condition, result);
  return status;
}

int VoxelPasses::runLoop(const ConditionJobs& condition, const TAV_Pars& request, VoxelPath& path,
                         std::span<RawResult* const> results, std::ostream& errors) {
  if (!isLoaded(condition)) return runVoxelLoop(condition, request, path, log_, results, errors);
  runLoadedLoop(condition, path, results, {options_.threads, options_.cancel});
  reportLoopDone(request, log_);
  return kSuccess;
}

// Companions take part in the conditions of the reference before them, one after the other.
bool VoxelPasses::continuesGroup(std::size_t voi, std::size_t cond) const {
  return !companions_.empty() && companions_.front().voi == voi + 1 &&
         companions_.front().results.size() == cond;
}

// The result's stores go back for the next pass.
bool VoxelPasses::takeResult(std::size_t voi, std::size_t cond, RawResult& result) {
  const auto found = std::find_if(companions_.begin(), companions_.end(), [&](const Companion& companion) {
    return companion.voi == voi && cond < companion.results.size();
  });
  if (found == companions_.end()) return false;
  random_ = found->results[cond].after;
  std::swap(result, found->results[cond]);
  spare_.push_back(std::exchange(found->results[cond], {}));
  return true;
}

void VoxelPasses::startGroup(const TAV_Pars& request, std::size_t voi) {
  companions_.clear();
  if (voi < starts_.size()) random_ = starts_[voi];
  simo::RandomStream random = random_;
  const std::size_t count = nrOfCompanions(request, voi);
  for (std::size_t next = voi + 1; next <= voi + count; ++next) {
    random.skip(drawsPerVoi_);
    companions_.push_back({next, next < starts_.size() ? starts_[next] : random, {}});
  }
}

// Those behind it that the run would find ready. In one sequence of random numbers their place is
// known when the first reference is done.
std::size_t VoxelPasses::nrOfCompanions(const TAV_Pars& request, std::size_t voi) const {
  if (starts_.empty() && !isFirstDone(request)) return 0;
  const std::size_t affordable = kCompanionBytes / std::max<std::size_t>(bytesPerReference(request), 1);
  const std::size_t most = std::min({affordable, kMostCompanions, request.vois.size() - 1 - voi});
  for (std::size_t count = 0; count < most; ++count) {
    for (const TAV_Cond_Pars& cond : request.conds) {
      const auto courses = coursesOf(request.vois[voi + 1 + count], cond);
      if (std::find(courses.begin(), courses.end(), nullptr) != courses.end()) return count;
    }
  }
  return most;
}

std::size_t VoxelPasses::bytesPerReference(const TAV_Pars& request) const {
  constexpr std::size_t kMeasureBytes = kNrOfMeasures * sizeof(float);
  const std::size_t voxels = gridOf(request).voxels() * request.conds.size();
  const std::size_t included = isFirstDone(request) ? includedPerVoi_ : voxels;
  return voxels * (2 * kMeasureBytes + sizeof(VoxelStatus)) +
         included * kMeasureBytes * static_cast<std::size_t>(options_.nullDraws - 1);
}

bool VoxelPasses::isFirstDone(const TAV_Pars& request) const {
  return condsNoted_ == request.conds.size();
}

// Null where a course was not fetched.
std::vector<const VoiTc*> VoxelPasses::coursesOf(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond) const {
  std::vector<const VoiTc*> courses;
  for (const TAV_VTC_intv_set& set : cond.vtcIntvSets)
    courses.push_back(computer_.getFetchedVoiTc(voi.name, set.srcVtcName));
  return courses;
}

RawResult VoxelPasses::makeResult(const TAV_Pars& request) {
  if (spare_.empty()) {
    return {static_cast<unsigned>(request.dimX), static_cast<unsigned>(request.dimY),
            static_cast<unsigned>(request.dimZ), options_.nullDraws};
  }
  RawResult result = std::move(spare_.back());
  spare_.pop_back();
  return result;
}

void VoxelPasses::noteFirst(const ConditionJobs& condition, const RawResult& result) {
  const std::uint64_t included = result.status.size() - static_cast<std::size_t>(result.counts.skipped);
  includedPerVoi_ += included;
  drawsPerVoi_ += included * drawsPerVoxel(condition.jobs[0]);
  ++condsNoted_;
}

}  // namespace tav
