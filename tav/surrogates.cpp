// Surrogate reference courses: realisations of an autoregressive model of the reference alone.
// They share its spectrum and variance and nothing with any voxel.
#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "simo/randomness.h"
#include "tav/log_pane.h"
#include "tav/tav.h"

namespace tav {
namespace {

int longestCourse(const TAV_Pars& request, const std::vector<std::unique_ptr<VoiTc>>& voiTcs) {
  int longest = std::max(1, static_cast<int>(request.vtcMaxNrOfVolumes));
  for (const auto& voiTc : voiTcs) longest = std::max(longest, voiTc->tc.nCols);
  return longest;
}

// The scratch matrices of one call, and the steps for one course.
class SurrogateMaker {
 public:
  SurrogateMaker(const TAV_Pars& request, int longest, bool pool, simo::FosAvg<float>& averages,
                 simo::FosOrth<float>& model)
      : nrOfSurrogates_(request.nSurrogateSims),
        pool_(pool),
        averages_(averages),
        model_(model),
        residuals_(1, longest, 1, 1, 0.0F),
        simulated_(1, longest + request.nDiscardedSimTps, 1, 1, 0.0F) {}

  // Fits the course and fills its surrogates; they are all 0 when that fails.
  [[nodiscard]] bool make(VoiTc& voiTc) {
    voiTc.surrogates.fill(0.0F);
    return fit(voiTc) && simulate(voiTc);
  }

 private:
  bool fit(VoiTc& voiTc);
  bool simulate(VoiTc& voiTc);
  [[nodiscard]] bool addToAverages(const VoiTc& voiTc);

  int nrOfSurrogates_;
  bool pool_;
  simo::FosAvg<float>& averages_;
  simo::FosOrth<float>& model_;
  simo::Matrix<float> residuals_;
  simo::Matrix<float> simulated_;
};

// A course with missing values is not added: it would make every later pooled model undefined.
bool SurrogateMaker::addToAverages(const VoiTc& voiTc) {
  const int length = voiTc.tc.nCols;
  if (length <= averages_.p) return false;
  simo::dtrendRowsToRes(voiTc.tc, 1, 2, 1, length + 1, residuals_, 1, 1);
  const float* const first = residuals_.elements();
  if (!std::all_of(first, first + length, [](float value) { return std::isfinite(value); })) return false;
  // Not cleared between courses when pooling, deliberately: each model then sees the averages of
  // all courses before it. Clearing would change every surrogate after the first course.
  if (!pool_) averages_.clear();
  simo::accum_actavgs(residuals_, 1, 2, 1, length + 1, averages_);
  return true;
}

bool SurrogateMaker::fit(VoiTc& voiTc) {
  if (!addToAverages(voiTc) || !simo::fitModel(averages_, 0, model_)) return false;
  voiTc.noiseCov.assign(model_.errCov, 0, 0);
  simo::arCoefficients(model_.coefs, model_.invFactors, model_.alphas, model_.p, voiTc.arCoefs);
  return std::isfinite(voiTc.noiseCov[0][0]);
}

bool SurrogateMaker::simulate(VoiTc& voiTc) {
  const int length = voiTc.tc.nCols;
  for (int s = 0; s < nrOfSurrogates_; ++s) {
    if (!simo::varsim(simulated_, voiTc.arCoefs, voiTc.noiseCov, static_cast<unsigned>(s))) return false;
    const float* const end = simulated_.elements() + simulated_.nCols;
    std::copy(end - length, end, voiTc.surrogates[voiTc.surrogates.rowBase + s] + voiTc.surrogates.colBase);
  }
  return true;
}

void reportNoSurrogates(const VoiTc& voiTc, std::ostream& errors) {
  errors << "WARNING: No surrogates for VOI '" << voiTc.voiName << "' in vtc '" << voiTc.vtcName
         << "': no autoregressive model fits its time course; its null measures are 0\n";
}

void reportMissing(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, std::ostream& errors) {
  errors << "Failed to retrieve precomputed voi time-course for VOI '" << voi.name << "', Condition '"
         << cond.name << "' (internal error)";
}

// Begins one reference's random numbers anew, if it has a time base of its own, for one scope.
class OwnTimeBase {
 public:
  OwnTimeBase(const RunOptions& options, std::size_t voi) : isOwn_(voi < options.voiTimeBases.size()) {
    if (!isOwn_) return;
    simo::setTimeBase(options.voiTimeBases[voi]);
    simo::randomStream().seed(static_cast<unsigned>(options.voiTimeBases[voi]));
  }
  ~OwnTimeBase() {
    if (isOwn_) simo::setTimeBase(std::nullopt);
  }
  OwnTimeBase(const OwnTimeBase&) = delete;
  OwnTimeBase& operator=(const OwnTimeBase&) = delete;

 private:
  bool isOwn_;
};

}  // namespace

int Computer::simSurrogateVOITCs(const TAV_Pars& request, std::ostringstream& /*log*/, std::ostream& errors) {
  if (request.showVerboseProgress) {
    logLine<128>("%s\n%s Generating surrogate ref time-courses...", TAV_PROMPT, TAV_PROMPT);
  }
  fosAvg1->clear();
  SurrogateMaker maker(request, longestCourse(request, voiTcs), options_.poolSurrogateModels, *fosAvg1,
                       *fosOrth1a);
  passes_ = std::make_unique<VoxelPasses>(*this, options_);
  std::set<const VoiTc*> done;
  for (std::size_t i = 0; i < request.vois.size(); ++i) {
    const TAV_VOI_Pars& voi = request.vois[i];
    const OwnTimeBase ownTimeBase(options_, i);
    for (const TAV_Cond_Pars& cond : request.conds) {
      for (const TAV_VTC_intv_set& set : cond.vtcIntvSets) {
        VoiTc* const voiTc = getFetchedVoiTc(voi.name, set.srcVtcName);
        if (voiTc == nullptr) {
          reportMissing(voi, cond, errors);
          return kTerminalError;
        }
        // Pooling refits a course each time it comes up, with other averages; its own model alone
        // would only be made again.
        const bool isRepeat = !done.insert(voiTc).second;
        if (isRepeat && !options_.poolSurrogateModels) continue;
        if (!maker.make(*voiTc)) reportNoSurrogates(*voiTc, errors);
      }
    }
    if (!options_.voiTimeBases.empty()) passes_->addStart(simo::randomStream());
  }
  return kSuccess;
}

}  // namespace tav
