#include "bench/kernel/phases.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <sstream>
#include <stdexcept>

#include "bench/kernel/stopwatch.h"
#include "tav/condition.h"
#include "tav/map_values.h"
#include "tav/tail_thresholds.h"
#include "tav/tav.h"
#include "tav/voxel_loop.h"

namespace bench {
namespace {

// Times a path's preparation, which the voxel loop contains.
class TimedPath : public tav::VoxelPath {
 public:
  explicit TimedPath(tav::VoxelPath& path) : path_(path) {}
  [[nodiscard]] const char* name() const override { return path_.name(); }
  void begin(std::span<const tav::VoxelJob> jobs) override {
    const Stopwatch watch;
    path_.begin(jobs);
    beginSeconds = watch.seconds();
  }
  void compute(std::size_t nrOfVoxels, std::span<const tav::VoxelData> data,
               std::span<const tav::VoxelResults> results) override {
    path_.compute(nrOfVoxels, data, results);
  }
  [[nodiscard]] std::unique_ptr<tav::VoxelPath> beside(
      std::span<simo::RandomStream* const> streams) const override {
    return path_.beside(streams);
  }
  double beginSeconds = 0.0;

 private:
  tav::VoxelPath& path_;
};

void require(int status, const std::ostringstream& errors) {
  if (status != tav::kSuccess) throw std::runtime_error(errors.str());
}

class PhaseTimer {
 public:
  PhaseTimer(const Workload& workload, const std::string& file, const tav::RunOptions& options)
      : request_(makeRequest(workload, file)), options_(options), computer_(options) {
    request_.showVerboseProgress = false;
    require(computer_.Init(request_, errors_), errors_);
    require(computer_.createVOIResultMAP(request_.vois[0], request_, errors_), errors_);
    path_ = tav::makeVoxelPath(options_.kernel, errors_);
    if (path_ == nullptr) throw std::runtime_error(errors_.str());
  }
  ~PhaseTimer() { computer_.CleanUp(); }
  PhaseTimer(const PhaseTimer&) = delete;
  PhaseTimer& operator=(const PhaseTimer&) = delete;

  void time(Phases& best) {
    std::ostringstream log;
    lower(best.surrogates, [&] { require(computer_.simSurrogateVOITCs(request_, log, errors_), errors_); });
    timeLoop(best);
    lower(best.transfer, [&] {
      require(computer_.transferConditionResults(request_.vois[0], request_.conds[0], 0, request_, errors_),
              errors_);
    });
    timeThresholds(best);
  }

 private:
  template <class Work>
  static void lower(double& best, Work work) {
    best = std::min(best, bestSeconds(1, work));
  }

  void timeLoop(Phases& best) {
    std::ostringstream log;
    tav::CheckedCondition checked;
    require(
        tav::checkCondition(computer_, request_.vois[0], request_.conds[0], request_, log, errors_, checked),
        errors_);
    const auto jobs = tav::makeConditionJobs(request_.conds[0], {{checked.references, &computer_.random}},
                                             request_, options_);
    tav::RawResult* const results[] = {&computer_.raw};
    TimedPath timed(*path_);
    const Stopwatch watch;
    require(tav::runVoxelLoop(jobs, request_, timed, tav::RunLog(), results, errors_), errors_);
    best.loop = std::min(best.loop, watch.seconds() - timed.beginSeconds);
    best.prepare = std::min(best.prepare, timed.beginSeconds);
    best.illDefined = computer_.raw.counts.illDefined;
    best.surrogatesIllDefined = computer_.raw.counts.surrogatesIllDefined;
    best.checksum = 0.0;
    for (int m = 0; m < tav::kNrOfMeasures; ++m) {
      const float* values = computer_.rawMaps1->values(m);
      for (std::size_t i = 0; i < computer_.rawMaps1->nrOfVoxels(); ++i)
        best.checksum += static_cast<double>(values[i]);
    }
  }

  void timeThresholds(Phases& best) {
    const std::size_t n = computer_.rawMaps1->nrOfVoxels();
    std::vector<float> observed(n), null(n);
    double sum = 0.0;
    for (const tav::MapType type : request_.mapTypes) {
      if (type == tav::DTAV_RC) continue;
      tav::computeMapValues(type, rawValues(*computer_.rawMaps1), request_, observed.data());
      tav::computeMapValues(type, rawValues(*computer_.rawMaps2), request_, null.data());
      sum += bestSeconds(1, [&] {
        (void)tav::searchTailThresholds(options_.thresholdRule, request_.qThresholds,
                                        tav::StoredMap({observed}), tav::StoredMap({null}),
                                        request_.cvConstant);
      });
    }
    best.thresholds = std::min(best.thresholds, sum);
  }

  static tav::RawValues rawValues(const tav::rawTAVMaps& maps) {
    return {{maps.values(0), maps.values(1), maps.values(2)}, maps.nrOfVoxels()};
  }

  tav::TAV_Pars request_;
  tav::RunOptions options_;
  tav::Computer computer_;
  std::unique_ptr<tav::VoxelPath> path_;
  std::ostringstream errors_;
};

tav::RunOptions optionsOf(const std::string& kernel, int draws, tav::FitForm form) {
  tav::RunOptions options;
  options.nullDraws = draws;
  options.timeBase = 1;  // the same surrogates for every path
  options.kernel = kernel;
  options.fitForm = form;
  if (form == tav::FitForm::kLeastSquares) {
    options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
    options.thresholdRule = tav::ThresholdRule::kStepUp;
  }
  return options;
}

void computeWhole(const tav::TAV_Pars& request, const tav::RunOptions& options) {
  std::ostringstream errors;
  tav::Computer computer(options);
  require(computer.computeTAVs(request, errors), errors);
}

double wholeRun(const Workload& workload, const std::string& file, const tav::RunOptions& options) {
  tav::TAV_Pars request = makeRequest(workload, file);
  request.showVerboseProgress = false;
  return bestSeconds(1, [&] { computeWhole(request, options); });
}

// The time that passes, whatever the number of threads.
double wallOfRun(const Workload& workload, const std::string& file, const tav::RunOptions& options) {
  tav::TAV_Pars request = makeRequest(workload, file);
  request.showVerboseProgress = false;
  const auto start = std::chrono::steady_clock::now();
  computeWhole(request, options);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

void Phases::lower(const Phases& other) {
  for (double Phases::*phase : {&Phases::surrogates, &Phases::prepare, &Phases::loop, &Phases::transfer,
                                &Phases::thresholds, &Phases::whole})
    this->*phase = std::min(this->*phase, other.*phase);
}

Phases measurePhases(const Workload& workload, const std::string& file, const std::string& kernel,
                     int repetitions, int draws, tav::FitForm form) {
  const tav::RunOptions options = optionsOf(kernel, draws, form);
  constexpr double kNever = 1e9;
  Phases best{kNever, kNever, kNever, kNever, kNever, kNever, 0, 0, 0.0};
  {
    PhaseTimer timer(workload, file, options);
    for (int i = 0; i < repetitions; ++i) timer.time(best);
  }
  for (int i = 0; i < repetitions; ++i) best.whole = std::min(best.whole, wholeRun(workload, file, options));
  return best;
}

double atlasSecondsPerReference(const Workload& workload, const std::string& file, const std::string& kernel,
                                int references, int draws) {
  tav::RunOptions options = optionsOf(kernel, draws, tav::FitForm::kLeastSquares);
  options.nullP = true;
  tav::TAV_Pars request = makeRequest(workload, file);
  request.showVerboseProgress = false;
  const tav::TAV_VOI_Pars region = request.vois[0];
  request.vois.clear();
  for (int i = 0; i < references; ++i) {
    request.vois.push_back(region);
    request.vois.back().name += std::to_string(i);
    request.vois.back().voxels += 3 * (i % region.nVoxels);
    request.vois.back().nVoxels = region.nVoxels - i % region.nVoxels;
    options.voiTimeBases.push_back(i + 1);
  }
  const std::clock_t start = std::clock();
  std::ostringstream errors;
  tav::Computer computer(options);
  require(computer.computeTAVs(request, errors), errors);
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / references;
}

double wholeMapSeconds(const Workload& workload, const std::string& file, const std::string& kernel, int maps,
                       int threads) {
  constexpr int kDraws = 20;
  tav::RunOptions options = optionsOf(kernel, kDraws, tav::FitForm::kLeastSquares);
  options.threads = threads;
  const double without = wallOfRun(workload, file, options);
  options.fweDraws = maps;
  return wallOfRun(workload, file, options) - without;
}

}  // namespace bench
