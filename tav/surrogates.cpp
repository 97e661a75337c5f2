// Surrogate reference courses: realisations of a model of the reference alone. They share its spectrum and
// variance, with own residuals its envelope, and nothing with any voxel.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>

#include "simo/randomness.h"
#include "simo/residual_surrogates.h"
#include "tav/at_once.h"
#include "tav/tav.h"

namespace tav {
namespace {

int longestCourse(const TAV_Pars& request, const std::vector<std::unique_ptr<VoiTc>>& voiTcs) {
  int longest = std::max(1, static_cast<int>(request.vtcMaxNrOfVolumes));
  for (const auto& voiTc : voiTcs) longest = std::max(longest, voiTc->tc.nCols);
  return longest;
}

class SurrogateMaker {
 public:
  virtual ~SurrogateMaker() = default;
  // Seeds count from `base`; none: from what the environment or the clock says at each.
  virtual void setTimeBase(std::optional<std::int64_t> base) = 0;
  // Fits the course and fills its surrogates; false, and all are 0, when that fails.
  [[nodiscard]] virtual bool make(VoiTc& voiTc) = 0;
};

// The scratch matrices of one call, and the steps for one course.
class PooledModels : public SurrogateMaker {
 public:
  PooledModels(const TAV_Pars& request, int longest, simo::RandomStream& random)
      : nrOfSurrogates_(request.nSurrogateSims),
        random_(random),
        averages_(2, request.arOrder),
        model_(1, request.arOrder),
        residuals_(1, longest, 1, 1, 0.0F),
        simulated_(1, longest + request.nDiscardedSimTps, 1, 1, 0.0F) {}

  void setTimeBase(std::optional<std::int64_t> base) override { timeBase_ = base; }

  // A course is fitted each time it comes up, with other averages.
  [[nodiscard]] bool make(VoiTc& voiTc) override {
    voiTc.surrogates.fill(0.0F);
    return fit(voiTc) && simulate(voiTc);
  }

 private:
  bool fit(VoiTc& voiTc);
  bool simulate(VoiTc& voiTc);
  [[nodiscard]] bool addToAverages(const VoiTc& voiTc);

  int nrOfSurrogates_;
  simo::RandomStream& random_;
  simo::FosAvg<float> averages_;  // of dimension 2; only its first series is used
  simo::FosOrth<float> model_;
  simo::Matrix<float> residuals_;
  simo::Matrix<float> simulated_;
  std::optional<std::int64_t> timeBase_;
};

// A course with missing values is not added: it would make every later pooled model undefined.
bool PooledModels::addToAverages(const VoiTc& voiTc) {
  const int length = voiTc.tc.nCols;
  if (length <= averages_.p) return false;
  simo::dtrendRowsToRes(voiTc.tc, 1, 2, 1, length + 1, residuals_, 1, 1);
  const float* const first = residuals_.elements();
  if (!std::all_of(first, first + length, [](float value) { return std::isfinite(value); })) return false;
  // Not cleared between courses, deliberately: each model sees the averages of all courses before it.
  // Clearing would change every surrogate after the first course.
  simo::accum_actavgs(residuals_, 1, 2, 1, length + 1, averages_);
  return true;
}

bool PooledModels::fit(VoiTc& voiTc) {
  if (!addToAverages(voiTc) || !simo::fitModel(averages_, 0, model_)) return false;
  voiTc.noiseCov.assign(model_.errCov, 0, 0);
  simo::arCoefficients(model_.coefs, model_.invFactors, model_.alphas, model_.p, voiTc.arCoefs);
  return std::isfinite(voiTc.noiseCov[0][0]);
}

bool PooledModels::simulate(VoiTc& voiTc) {
  const int length = voiTc.tc.nCols;
  for (int s = 0; s < nrOfSurrogates_; ++s) {
    const std::int64_t base = timeBase_ ? *timeBase_ : simo::timeBase();
    const unsigned start = static_cast<unsigned>(base) + static_cast<unsigned>(s);
    if (!simo::varsim(simulated_, voiTc.arCoefs, voiTc.noiseCov, random_, start)) return false;
    const float* const end = simulated_.elements() + simulated_.nCols;
    std::copy(end - length, end, voiTc.surrogates[voiTc.surrogates.rowBase + s] + voiTc.surrogates.colBase);
  }
  return true;
}

// What one thread needs to draw surrogates of one course.
class RowDrawer {
 public:
  RowDrawer(const simo::ResidualSurrogates& model, const CourseTreatment& treatment,
            const simo::RandomStream& random, const std::atomic<bool>* cancel)
      : model_(model), apply_(treatment.apply), random_(random), cancel_(cancel) {}

  // Rows first ... end - 1, counted from 0.
  void draw(simo::Matrix<float>& surrogates, std::size_t first, std::size_t end) {
    const auto volumes = static_cast<std::size_t>(surrogates.nCols);
    for (std::size_t row = first; row < end;) {
      stopIf(cancel_);
      const std::size_t count = end - row >= kTogether ? kTogether : 1;
      const std::span<float> rows(surrogates.elements() + row * volumes, count * volumes);
      count == 1 ? model_.draw(random_, rows) : drawTogether(rows);
      for (std::size_t i = 0; apply_ && i < count; ++i) apply_(rows.data() + i * volumes);
      row += count;
    }
  }

 private:
  static constexpr std::size_t kTogether = simo::ResidualSurrogates::kTogether;

  void drawTogether(std::span<float> rows) {
    std::array<simo::RandomStream, kTogether> streams;
    for (simo::RandomStream& stream : streams) {
      stream = random_;
      random_.skip(model_.numbersPerDraw());
    }
    model_.drawTogether(streams, rows);
  }

  simo::ResidualSurrogates model_;
  std::function<void(float*)> apply_;
  simo::RandomStream random_;
  const std::atomic<bool>* cancel_;
};

// Each course's own residuals, and everything that was done to the course.
class OwnResiduals : public SurrogateMaker {
 public:
  OwnResiduals(const RunOptions& options, simo::RandomStream& random) : options_(options), random_(random) {}

  // One sequence for a reference: its seed is set where it starts.
  void setTimeBase(std::optional<std::int64_t> base) override {
    if (options_.voiTimeBases.empty() && !isSeeded_)
      random_.seed(static_cast<unsigned>(base ? *base : simo::timeBase()));
    isSeeded_ = true;
  }

  // Once for each course.
  [[nodiscard]] bool make(VoiTc& voiTc) override {
    if (!done_.insert(&voiTc).second) return true;
    voiTc.surrogates.fill(0.0F);
    const CourseTreatment treatment = treatmentOf(voiTc);
    const auto volumes = static_cast<std::size_t>(voiTc.tc.nCols);
    const simo::ResidualSurrogates surrogates({voiTc.tc.elements(), volumes}, treatment.known);
    if (!surrogates.isDefined()) return false;
    drawAll(surrogates, treatment, voiTc.surrogates);
    return true;
  }

 private:
  [[nodiscard]] CourseTreatment treatmentOf(const VoiTc& voiTc) const {
    const auto found = options_.treatments.find(voiTc.vtcName);
    if (found != options_.treatments.end()) return found->second;
    return {{{0, voiTc.tc.nCols}}, {}};
  }

  // Each thread draws a stretch of rows, with the numbers that the stretch would find alone.
  void drawAll(const simo::ResidualSurrogates& model, const CourseTreatment& treatment,
               simo::Matrix<float>& surrogates) {
    const auto rows = static_cast<std::size_t>(surrogates.nRows);
    const auto threads = static_cast<std::size_t>(std::max(options_.threads, 1));
    atOnce(threads, [&](std::size_t thread) {
      const std::size_t first = rows * thread / threads;
      simo::RandomStream random = random_;
      random.skip(first * model.numbersPerDraw());
      RowDrawer drawer(model, treatment, random, options_.cancel);
      drawer.draw(surrogates, first, rows * (thread + 1) / threads);
    });
    random_.skip(rows * model.numbersPerDraw());
  }

  const RunOptions& options_;
  simo::RandomStream& random_;
  bool isSeeded_ = false;
  std::set<const VoiTc*> done_;
};

std::unique_ptr<SurrogateMaker> makerFor(const RunOptions& options, const TAV_Pars& request, int longest,
                                         simo::RandomStream& random) {
  if (options.surrogateKind == SurrogateKind::kOwnResiduals)
    return std::make_unique<OwnResiduals>(options, random);
  return std::make_unique<PooledModels>(request, longest, random);
}

void reportNoSurrogates(const VoiTc& voiTc, std::ostream& errors) {
  errors << "WARNING: No surrogates for VOI '" << voiTc.voiName << "' in vtc '" << voiTc.vtcName
         << "': no autoregressive model fits its time course; its null measures are 0\n";
}

void reportMissing(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, std::ostream& errors) {
  errors << "Failed to retrieve precomputed voi time-course for VOI '" << voi.name << "', Condition '"
         << cond.name << "' (internal error)";
}

// Makes the surrogates of all courses of one reference. False when one was not fetched.
bool makeAll(const TAV_VOI_Pars& voi, const TAV_Pars& request, const Computer& computer,
             SurrogateMaker& maker, std::ostream& errors) {
  for (const TAV_Cond_Pars& cond : request.conds) {
    for (const TAV_VTC_intv_set& set : cond.vtcIntvSets) {
      VoiTc* const voiTc = computer.getFetchedVoiTc(voi.name, set.srcVtcName);
      if (voiTc == nullptr) {
        reportMissing(voi, cond, errors);
        return false;
      }
      if (!maker.make(*voiTc)) reportNoSurrogates(*voiTc, errors);
    }
  }
  return true;
}

}  // namespace

int Computer::simSurrogateVOITCs(const TAV_Pars& request, std::ostringstream& /*log*/, std::ostream& errors) {
  if (request.showVerboseProgress) {
    runLog_.line<128>("%s\n%s Generating surrogate ref time-courses...", TAV_PROMPT, TAV_PROMPT);
  }
  const auto maker = makerFor(options_, request, longestCourse(request, voiTcs), random);
  passes_ = std::make_unique<VoxelPasses>(*this, options_, random, runLog_);
  for (std::size_t i = 0; i < request.vois.size(); ++i) {
    const bool startsAnew = i < options_.voiTimeBases.size();
    if (startsAnew) random.seed(static_cast<unsigned>(options_.voiTimeBases[i]));
    maker->setTimeBase(startsAnew ? options_.voiTimeBases[i] : options_.timeBase);
    if (!makeAll(request.vois[i], request, *this, *maker, errors)) return kTerminalError;
    if (startsAnew) passes_->addStart(random);
  }
  return kSuccess;
}

}  // namespace tav
