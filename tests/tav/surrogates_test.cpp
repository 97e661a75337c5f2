#include <algorithm>
#include <cmath>
#include <limits>

#include "simo/residual_surrogates.h"
#include "tests/tav/run_fixture.h"

using ::testing::Each;
using ::testing::HasSubstr;

namespace {

class Surrogates : public RunTest {
 protected:
  int simulate(const tav::TAV_Pars& pars, const tav::RunOptions& options = {}) {
    computer = std::make_unique<tav::Computer>(options, &listener);
    EXPECT_EQ(computer->Init(pars, errors), tav::kSuccess);
    return computer->simSurrogateVOITCs(pars, log, errors);
  }
  static std::vector<float> surrogate(const tav::VoiTc& voiTc, int s) {
    const float* const row = voiTc.surrogates[voiTc.surrogates.rowBase + s] + voiTc.surrogates.colBase;
    return {row, row + voiTc.surrogates.nCols};
  }
  // Two runs of different noise as two conditions.
  tav::TAV_Pars twoCourses() {
    tav::TAV_Pars pars = simpleRequest(spec);
    addCondition(pars, "second", writeNoise("second.vtc", spec, 77), {{1, 60}});
    return pars;
  }

  fakes::VtcSpec spec = fakes::cellGrid(2, 1, 1, 60);
  std::unique_ptr<tav::Computer> computer;
  std::ostringstream log;
};

}  // namespace

TEST_F(Surrogates, FollowTheModelOfTheirCourse) {
  spec.nrOfVolumes = 2000;
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.nSurrogateSims = 50;
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  const tav::VoiTc& voiTc = *computer->voiTcs[0];
  EXPECT_NEAR(voiTc.arCoefs[1][0][0], 0.5F, 0.06F) << "the voxel's own coefficient";
  EXPECT_NEAR(voiTc.noiseCov[0][0], 2500.0F, 250.0F);
  double lag0 = 0.0, lag1 = 0.0;
  for (int s = 0; s < 50; ++s) {
    const auto x = surrogate(voiTc, s);
    for (std::size_t t = 1; t < x.size(); ++t) {
      lag0 += static_cast<double>(x[t]) * static_cast<double>(x[t]);
      lag1 += static_cast<double>(x[t]) * static_cast<double>(x[t - 1]);
    }
  }
  EXPECT_NEAR(lag1 / lag0, static_cast<double>(voiTc.arCoefs[1][0][0]), 0.01);
  EXPECT_NEAR(lag0 / (50 * 1999) * (1 - 0.25), 2500.0, 250.0);
}

TEST_F(Surrogates, WithoutSimulationsTheModelIsFittedAllTheSame) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.nSurrogateSims = 0;
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_GT(computer->voiTcs[0]->noiseCov[0][0], 0.0F);
  EXPECT_NE(computer->voiTcs[0]->arCoefs[1][0][0], 0.0F);
}

TEST_F(Surrogates, WithoutReferencesThereIsNothingToDo) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.vois.clear();
  EXPECT_EQ(simulate(pars), tav::kSuccess);
}

TEST_F(Surrogates, TakeTheLastSimulatedPoints) {
  tav::TAV_Pars pars = twoCourses();
  fakes::VtcSpec shorter = spec;
  shorter.nrOfVolumes = 25;
  addCondition(pars, "short", writeNoise("short.vtc", shorter, 5), {{1, 25}});
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  for (const auto& voiTc : computer->voiTcs) {
    simo::Matrix<float> simulated(1, 60 + 10, 1, 1, 0.0F);
    ASSERT_TRUE(simo::varsim(simulated, voiTc->arCoefs, voiTc->noiseCov, 3U));
    const std::vector<float> last(simulated.elements() + 70 - voiTc->tc.nCols, simulated.elements() + 70);
    EXPECT_EQ(surrogate(*voiTc, 3), last) << "a course of " << voiTc->tc.nCols << " points";
  }
}

TEST_F(Surrogates, PoolTheAveragesOfEarlierCourses) {
  const tav::TAV_Pars pars = twoCourses();
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  const float first = computer->voiTcs[0]->noiseCov[0][0];
  const float pooled = computer->voiTcs[1]->noiseCov[0][0];
  tav::TAV_Pars second = twoCourses();
  second.conds.erase(second.conds.begin());
  ASSERT_EQ(simulate(second), tav::kSuccess);
  const float alone = computer->voiTcs[0]->noiseCov[0][0];
  EXPECT_NEAR(pooled, first + alone, 0.1F * pooled) << "averages add up";
}

tav::RunOptions ownResiduals() {
  tav::RunOptions options;
  options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
  options.timeBase = 11;
  return options;
}

TEST_F(Surrogates, OfOwnResidualsAreTheLibrarysInOneSequence) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(simulate(pars, ownResiduals()), tav::kSuccess);
  const tav::VoiTc& voiTc = *computer->voiTcs[0];
  const auto volumes = static_cast<std::size_t>(voiTc.tc.nCols);
  simo::ResidualSurrogates expected({voiTc.tc.elements(), volumes}, {{0, voiTc.tc.nCols}});
  simo::RandomStream random(11);
  std::vector<float> drawn(volumes);
  for (int s = 0; s < 3; ++s) {
    expected.draw(random, drawn);
    EXPECT_EQ(surrogate(voiTc, s), drawn) << s;
  }
}

TEST_F(Surrogates, OfOwnResidualsGetTheTreatmentOfTheirVtc) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  tav::RunOptions options = ownResiduals();
  ASSERT_EQ(simulate(pars, options), tav::kSuccess);
  const std::vector<float> untreated = surrogate(*computer->voiTcs[0], 1);
  const std::string vtc = computer->voiTcs[0]->vtcName;
  options.treatments[vtc] = {{{0, 60}}, [](float* course) { course[2] = 77.0F; }};
  ASSERT_EQ(simulate(pars, options), tav::kSuccess);
  std::vector<float> treated = surrogate(*computer->voiTcs[0], 1);
  EXPECT_EQ(treated[2], 77.0F);
  treated[2] = untreated[2];
  EXPECT_EQ(treated, untreated);
}

TEST_F(Surrogates, OfOwnResidualsRestOnTheKnownVolumesAlone) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  tav::RunOptions options = ownResiduals();
  ASSERT_EQ(simulate(pars, options), tav::kSuccess);
  const std::vector<float> whole = surrogate(*computer->voiTcs[0], 0);
  options.treatments[computer->voiTcs[0]->vtcName] = {{{0, 20}, {25, 60}}, {}};
  ASSERT_EQ(simulate(pars, options), tav::kSuccess);
  EXPECT_NE(surrogate(*computer->voiTcs[0], 0), whole);
}

TEST_F(Surrogates, ACourseThatRepeatsIsPooledAgain) {
  tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  const float once = computer->voiTcs[0]->noiseCov[0][0];
  addCondition(pars, "again", folder.file("noise.vtc"), {{1, 60}});
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_FLOAT_EQ(computer->voiTcs[0]->noiseCov[0][0], 2 * once);
}

TEST_F(Surrogates, AConstantCourseLeavesZerosAndOneWarning) {
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "c", writeVtc("flat.vtc", spec, [](int, int, int, int) { return 500.0F; }), {{1, 60}});
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_THAT(surrogate(*computer->voiTcs[0], 0), Each(0.0F));
  EXPECT_EQ(errors.str(), "WARNING: No surrogates for VOI 'seed' in vtc '" + folder.file("flat.vtc") +
                              "': no autoregressive model fits its time course; its null measures are 0\n");
}

TEST_F(Surrogates, ACourseNotLongerThanTheOrderLeavesZeros) {
  spec.nrOfVolumes = 4;
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.arOrder = 4;
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_THAT(surrogate(*computer->voiTcs[0], 19), Each(0.0F));
  EXPECT_THAT(errors.str(), HasSubstr("WARNING: No surrogates for VOI 'seed'"));
}

TEST_F(Surrogates, ACourseWithMissingValuesDoesNotSpoilTheOthers) {
  spec.dataType = 2;
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(3);
  addCondition(pars, "bad",
               writeVtc("bad.vtc", spec,
                        [&](int, int, int, int t) {
                          return t == 5 ? std::numeric_limits<float>::quiet_NaN() : 1000.0F + noise();
                        }),
               {{1, 60}});
  addCondition(pars, "good", writeNoise("good.vtc", spec, 4), {{1, 60}});
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_THAT(surrogate(*computer->voiTcs[0], 0), Each(0.0F));
  const auto good = surrogate(*computer->voiTcs[1], 0);
  EXPECT_TRUE(std::all_of(good.begin(), good.end(), [](float v) { return std::isfinite(v) && v != 0.0F; }));
}

TEST_F(Surrogates, AMissingCourseIsAnInternalError) {
  tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  pars.vois[0].name = "other";
  EXPECT_EQ(computer->simSurrogateVOITCs(pars, log, errors), tav::kTerminalError);
  EXPECT_EQ(
      errors.str(),
      "Failed to retrieve precomputed voi time-course for VOI 'other', Condition 'rest' (internal error)");
}

TEST_F(Surrogates, AnnounceThemselvesWhenWanted) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.showVerboseProgress = true;
  ASSERT_EQ(simulate(pars), tav::kSuccess);
  EXPECT_EQ(listener.lines,
            std::vector<std::string>{"// TAV>\n// TAV> Generating surrogate ref time-courses..."});
}
