// A run with a fixed time base against the literal computation, voxel by voxel and draw by draw.
// One number drawn too many or too few shifts every later surrogate and with it every later null
// measure by far more than the tolerance.
#include "tests/tav/literal_run.h"

#include "tests/support/scratch.h"
#include "tests/tav/run_fixture.h"

namespace {

// Single-precision lag averages of some 60 volumes and a chain of at most four lags: errors of a
// few hundred epsilon against the literal double computation. Measures are of order 0.01 to 1.
constexpr double kTolerance = 1000.0 * 1.2e-7;
constexpr unsigned kTimeBase = 90210;

struct Case {
  std::string name;
  int order;
  std::vector<std::vector<tav::TAV_intv>> intervals;  // per file
  tav::RunOptions options;
};

// With the plug-in's surrogates, which the literal run knows.
tav::RunOptions leastSquares() {
  tav::RunOptions options;
  options.fitForm = tav::FitForm::kLeastSquares;
  options.nullDraws = 3;
  options.thresholdRule = tav::ThresholdRule::kStepUp;
  return options;
}

std::vector<Case> cases() {
  return {{"order1", 1, {{{1, 60}}}, {}},
          {"order1Intervals", 1, {{{1, 30}, {35, 60}}, {{2, 41}}}, {}},
          {"order2Written", 2, {{{1, 60}}, {{5, 50}}}, {}},
          {"order4Written", 4, {{{1, 60}}}, {}},
          {"order1LeastSquares", 1, {{{1, 30}, {31, 60}}}, leastSquares()},
          {"order3LeastSquares", 3, {{{1, 60}}, {{1, 60}}}, leastSquares()}};
}

class LiteralRun : public RunTest, public ::testing::WithParamInterface<Case> {
 protected:
  // A noise file in which some voxels start below the inclusion threshold.
  std::string writeRun(std::size_t index) const {
    Noise noise(static_cast<unsigned>(index) + 31);
    std::vector<float> previous(2 * 3 * 2, 0.0F);
    return writeVtc("run" + std::to_string(index) + ".vtc", spec, [&](int x, int y, int z, int t) {
      float& state = previous[static_cast<std::size_t>((z * 3 + y) * 2 + x)];
      state = 0.6F * state + noise();
      return t == 0 && x == 1 && y == 1 ? 90.0F : 1000.0F + 40.0F * state + 0.5F * static_cast<float>(t);
    });
  }

  [[nodiscard]] literal::Set literalSet(const std::string& path,
                                        const std::vector<tav::TAV_intv>& intervals) const {
    const std::string bytes = contentOf(path);
    const std::size_t offset = fakes::vtcHeaderBytes(spec).size();
    const auto volumes = static_cast<std::size_t>(spec.nrOfVolumes);
    literal::Set set;
    for (std::size_t v = 0; v < spec.nrOfVoxels(); ++v) {
      auto& voxel = set.voxels.emplace_back();
      for (std::size_t t = 0; t < volumes; ++t) {
        const std::size_t at = offset + 2 * (v * volumes + t);
        voxel.push_back(static_cast<unsigned char>(bytes[at]) +
                        256.0 * static_cast<unsigned char>(bytes[at + 1]));
      }
    }
    const std::size_t last = spec.nrOfVoxels() - 6;  // first voxel of the last slice
    for (std::size_t t = 0; t < volumes; ++t)
      set.reference.push_back((set.voxels[0][t] + set.voxels[last][t]) / 2.0);
    for (const auto& interval : intervals) set.intervals.push_back({interval.first, interval.last});
    return set;
  }

  fakes::VtcSpec spec = fakes::cellGrid(2, 3, 2, 60);
};

}  // namespace

TEST_P(LiteralRun, GivesTheSameMeasuresDrawByDraw) {
  const Case& parameters = GetParam();
  tav::TAV_Pars pars = requestOn(spec);
  pars.arOrder = parameters.order;
  pars.conds.push_back({"c", {}});
  std::vector<literal::Set> sets;
  for (std::size_t i = 0; i < parameters.intervals.size(); ++i) {
    const std::string path = writeRun(i);
    pars.conds[0].vtcIntvSets.push_back({path, path, parameters.intervals[i]});
    sets.push_back(literalSet(path, parameters.intervals[i]));
  }
  simo::setTimeBase(kTimeBase);
  std::ostringstream log;
  tav::Computer computer(parameters.options);
  ASSERT_EQ(computer.Init(pars, errors), tav::kSuccess);
  ASSERT_EQ(computer.simSurrogateVOITCs(pars, log, errors), tav::kSuccess);
  ASSERT_EQ(computer.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, errors), tav::kSuccess);

  const literal::Result expected = literal::run(
      sets, {pars.arOrder, pars.nSurrogateSims, pars.nDiscardedSimTps, 100.0, kTimeBase, parameters.options});
  const auto further = static_cast<std::size_t>(parameters.options.nullDraws - 1);
  std::vector<float> furtherValues[3];
  if (further > 0) {
    for (const auto& block : computer.raw.furtherNulls->blocks()) {
      for (std::size_t v = 0; v < block.nrOfVoxels(); ++v) {
        for (std::size_t d = 0; d < further; ++d) {
          for (int m = 0; m < 3; ++m) furtherValues[m].push_back(block.draw(m, d)[v]);
        }
      }
    }
  }
  std::size_t included = 0;
  for (std::size_t v = 0; v < spec.nrOfVoxels(); ++v) {
    const bool skipped = sets[0].voxels[v][0] <= 100.0;
    for (std::size_t m = 0; m < 3; ++m) {
      const int measure = static_cast<int>(m);
      EXPECT_NEAR(static_cast<double>(computer.rawMaps1->values(measure)[v]), expected.observed[v].values[m],
                  kTolerance)
          << v << " " << m;
      EXPECT_NEAR(static_cast<double>(computer.rawMaps2->values(measure)[v]), expected.null[v][0].values[m],
                  kTolerance)
          << v << " " << m;
      for (std::size_t d = 0; d < further && !skipped; ++d) {
        EXPECT_NEAR(static_cast<double>(furtherValues[m][included * further + d]),
                    expected.null[v][d + 1].values[m], kTolerance)
            << v << " " << d;
      }
    }
    included += skipped ? 0 : 1;
  }
  EXPECT_EQ(included, spec.nrOfVoxels() - 2) << "the case has skipped voxels";
  EXPECT_EQ(furtherValues[0].size(), included * further);
  EXPECT_EQ(computer.random.next(), rand()) << "both have drawn equally often";
}

INSTANTIATE_TEST_SUITE_P(Runs, LiteralRun, ::testing::ValuesIn(cases()),
                         [](const auto& parameter) { return parameter.param.name; });
