#include "tests/calibration/simulated_run.h"

#include <cmath>
#include <random>
#include <sstream>
#include <stdexcept>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "simo/randomness.h"
#include "tav/tav.h"
#include "tests/fakes/fake_host.h"
#include "tests/fakes/vtc_file.h"

namespace calibration {
namespace {

constexpr int kWarmUp = 100;
constexpr double kReferenceAutocorrelation = 0.5;
constexpr float kBase = 10000, kSpread = 100;

int drivenVoxels(const Setting& s) { return static_cast<int>(std::lround(s.drivenShare * s.voxels)); }

class Simulator {
 public:
  Simulator(const Setting& setting, unsigned seed) : setting_(setting), generator_(seed) {
    double value = 0;
    for (int t = -kWarmUp; t < setting.volumes; ++t) {
      value = kReferenceAutocorrelation * value + normal_(generator_);
      reference_.push_back(value);
    }
  }

  [[nodiscard]] std::vector<float> sourceData() const {
    std::vector<float> data(values(), 0.0F);
    for (std::size_t t = 0; t < volumes(); ++t) data[t] = intensity(reference_[kWarmUp + t]);
    return data;
  }

  // The first voxels are the driven ones.
  [[nodiscard]] std::vector<float> targetData() {
    std::vector<float> data;
    data.reserve(values());
    for (int voxel = 0; voxel < setting_.voxels; ++voxel) {
      appendCourse(voxel < drivenVoxels(setting_) ? setting_.coupling : 0.0, data);
    }
    return data;
  }

 private:
  [[nodiscard]] std::size_t volumes() const { return static_cast<std::size_t>(setting_.volumes); }
  [[nodiscard]] std::size_t values() const { return static_cast<std::size_t>(setting_.voxels) * volumes(); }
  [[nodiscard]] static float intensity(double value) { return kBase + kSpread * static_cast<float>(value); }

  void appendCourse(double coupling, std::vector<float>& data) {
    double value = 0;
    for (std::size_t t = 1; t < kWarmUp + volumes(); ++t) {
      value = setting_.autocorrelation * value + coupling * reference_[t - 1] + normal_(generator_);
      if (t >= kWarmUp) data.push_back(intensity(value));
    }
  }

  const Setting& setting_;
  std::mt19937_64 generator_;
  std::normal_distribution<double> normal_;
  std::vector<double> reference_;
};

std::vector<tav::TAV_intv> equalIntervals(const Setting& s) {
  const int length = s.volumes / s.nrOfIntervals;
  std::vector<tav::TAV_intv> intervals;
  for (int n = 0; n < s.nrOfIntervals; ++n) intervals.push_back({n * length + 1, (n + 1) * length});
  return intervals;
}

tav::TAV_Pars makeRequest(const Setting& s, const std::string& source, const std::string& target,
                          const std::string& prefix) {
  static const std::int32_t firstVoxel[] = {0, 0, 0};
  tav::TAV_Pars pars;
  pars.mapTypes = {tav::REF2VOX};
  pars.qThresholds = s.qs;
  pars.cvConstant = s.cvConstant;
  pars.arOrder = s.order;
  pars.nSurrogateSims = s.nrOfSurrogates;
  pars.showVerboseProgress = false;
  pars.separateSrcTrgVtcs = true;
  pars.resultPathPrefix = prefix;
  pars.vtcXStart = pars.vtcYStart = pars.vtcZStart = 0;
  pars.vtcXEnd = 10;
  pars.vtcYEnd = 10;
  pars.vtcZEnd = s.voxels / 100;
  pars.vtcResolution = 1;
  pars.vtcMaxNrOfVolumes = s.volumes;
  pars.vois.push_back({"reference", 0, 1, firstVoxel, 0});
  pars.conds.push_back({"all", {{source, target, equalIntervals(s)}}});
  return pars;
}

tav::RunOptions optionsOf(const Setting& s) {
  if (!s.calibrated) return {};
  tav::RunOptions options;
  options.lagPairForm = simo::LagPairForm::kConsistent;
  options.poolSurrogateModels = false;
  options.nullDraws = 20;
  options.thresholdRule = tav::ThresholdRule::kStepUp;
  return options;
}

// Counts what passes, from the map's values and thresholds as a user of the maps would.
class Counter : public tav::RunObserver {
 public:
  Counter(int driven, std::size_t nrOfVoxels) : driven_(driven), nrOfVoxels_(nrOfVoxels) {}

  void onCondition(const tav::ConditionOutcome& outcome) override {
    const tav::MapOutcome& map = outcome.maps.at(0);
    for (const tav::MapThreshold& threshold : map.thresholds) found.push_back(count(map.values, threshold));
  }

  std::vector<Discoveries> found;

 private:
  [[nodiscard]] Discoveries count(const float* values, const tav::MapThreshold& threshold) const {
    Discoveries result;
    result.driven = driven_;
    if (!threshold.anyPasses()) return result;
    for (std::size_t voxel = 0; voxel < nrOfVoxels_; ++voxel) {
      if (values[voxel] == 0 || !(std::abs(values[voxel]) >= threshold.threshold)) continue;
      ++(static_cast<int>(voxel) < driven_ ? result.truly : result.falsely);
    }
    return result;
  }

  int driven_;
  std::size_t nrOfVoxels_;
};

}  // namespace

std::vector<Discoveries> simulateRun(const Setting& setting, unsigned seed, const std::string& folder) {
  Simulator simulator(setting, seed);
  fakes::VtcSpec spec = fakes::cellGrid(10, 10, setting.voxels / 100, setting.volumes);
  spec.dataType = kVtcFloatData;
  const std::string source = folder + "/source.vtc", target = folder + "/target.vtc";
  fakes::writeVtc(source, spec, simulator.sourceData());
  fakes::writeVtc(target, spec, simulator.targetData());

  fakes::FakeHost host;
  if (!InitZQAccess()) throw std::runtime_error("the host's operations are not exported");
  simo::setTimeBase(static_cast<std::int64_t>(seed) * 1000003);
  Counter counter(drivenVoxels(setting), static_cast<std::size_t>(setting.voxels));
  tav::Computer computer(optionsOf(setting), &counter);
  std::ostringstream errors;
  const int status = computer.computeTAVs(makeRequest(setting, source, target, folder + "/maps"), errors);
  simo::setTimeBase(std::nullopt);
  if (status != tav::kSuccess) throw std::runtime_error(errors.str());
  return counter.found;
}

}  // namespace calibration
