// One condition of one reference: checks, log, voxel loop, counters.
#include "tav/condition.h"

#include <cmath>
#include <limits>

#include "tests/support/scratch.h"
#include "tests/tav/run_fixture.h"

using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class Condition : public RunTest {
 protected:
  int compute(const tav::TAV_Pars& pars) {
    const int initialised = computer.Init(pars, errors);
    if (initialised != tav::kSuccess) return initialised;
    EXPECT_EQ(computer.simSurrogateVOITCs(pars, log, errors), tav::kSuccess);
    return computer.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, errors);
  }
  [[nodiscard]] float observed(int measure, std::size_t voxel) const {
    return computer.rawMaps1->values(measure)[voxel];
  }
  [[nodiscard]] float null(int measure, std::size_t voxel) const {
    return computer.rawMaps2->values(measure)[voxel];
  }

  fakes::VtcSpec spec = fakes::cellGrid(2, 1, 2, 40);
  tav::Computer computer{{}, &listener};
  std::ostringstream log;
};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

}  // namespace

TEST_F(Condition, IsDescribedInTheLog) {
  tav::TAV_Pars pars = simpleRequest(spec);
  const std::string vtc = folder.file("noise.vtc");
  pars.conds[0].vtcIntvSets[0].intervals = {{1, 10}, {21, 40}};
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_EQ(log.str(), "\tVTC: " + vtc +
                           "\n\tintv(s):\n\t\t1\t-\t10\n\t\t21\t-\t40\n"
                           "\n\tTotal nr. time-points: 30\n"
                           "\n\tEffective nr. time-points: 28\n"
                           "\n\tVoxels skipped: 0\t(0%)\n"
                           "\tVoxels ill-defined: 0\t(0%)\n"
                           "\tSurrogates ill-defined: 0\t(0%)\n");
}

TEST_F(Condition, NamesSourceAndTargetOfPairs) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.separateSrcTrgVtcs = true;
  pars.conds[0].vtcIntvSets[0].trgVtcName = writeNoise("t.vtc", spec, 9);
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tSrc VTC: " + folder.file("noise.vtc") +
                                   "\n\tTrg VTC: " + folder.file("t.vtc") + "\n\tintv(s):\n"));
}

TEST_F(Condition, LogsNothingInThePaneUnlessWanted) {
  ASSERT_EQ(compute(simpleRequest(spec)), tav::kSuccess);
  EXPECT_THAT(listener.lines, IsEmpty());
}

TEST_F(Condition, ShowsProgressInTens) {
  spec = fakes::cellGrid(1, 1, 21, 12);
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.showVerboseProgress = true;
  ASSERT_EQ(compute(pars), tav::kSuccess);
  std::vector<std::string> expected = {"// TAV>\n// TAV> Generating surrogate ref time-courses..."};
  for (int percent = 0; percent <= 100; percent += 10) {
    expected.push_back("// TAV>\t" + std::to_string(percent) + "%...");
  }
  expected.emplace_back(
      "// TAV>\tVoxels skipped: 0\t(0.0%)\n// TAV>\tVoxels ill-defined: 0\t(0.0%)\n// TAV>\tSurrogates "
      "ill-defined: "
      "0\t(0.0%)");
  EXPECT_EQ(listener.lines, expected);
}

TEST_F(Condition, ASingleSliceShowsZeroPercent) {
  spec = fakes::cellGrid(2, 1, 1, 12);
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.showVerboseProgress = true;
  ASSERT_EQ(compute(pars), tav::kSuccess);
  ASSERT_EQ(listener.lines.size(), 3U);
  EXPECT_EQ(listener.lines[1], "// TAV>\t0%...");
}

TEST_F(Condition, CutsTheCounterLineAt127Characters) {
  spec = fakes::cellGrid(100, 100, 12, 3);
  tav::TAV_Pars pars = requestOn(spec);
  pars.showVerboseProgress = true;
  addCondition(pars, "c", writeVtc("flat.vtc", spec, [](int, int, int, int) { return 0.0F; }), {{1, 3}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  const std::string whole =
      "// TAV>\tVoxels skipped: 120000\t(100.0%)\n// TAV>\tVoxels ill-defined: 0\t(0.0%)\n// "
      "TAV>\tSurrogates "
      "ill-defined: 0\t(0.0%)";
  EXPECT_EQ(listener.lines.back(), whole.substr(0, 127));
}

// 2 x 5 x 4 voxels; every count has a percentage of its own.
TEST_F(Condition, CountsComeWithTheirShareOfAllVoxels) {
  tav::TAV_Pars pars = requestOn(fakes::cellGrid(2, 5, 4, 12));
  pars.dimX = 2, pars.dimY = 5, pars.dimZ = 4;
  pars.showVerboseProgress = true;
  tav::reportCounts({2, 5, 13}, pars, tav::RunLog(&listener), log);
  EXPECT_EQ(log.str(),
            "\n\tVoxels skipped: 2\t(5%)\n\tVoxels ill-defined: 5\t(12.5%)\n"
            "\tSurrogates ill-defined: 13\t(32.5%)\n");
  EXPECT_EQ(listener.lines.back(),
            "// TAV>\tVoxels skipped: 2\t(5.0%)\n// TAV>\tVoxels ill-defined: 5\t(12.5%)\n"
            "// TAV>\tSurrogates ill-defined: 13\t(32.5%)");
}

TEST_F(Condition, RejectsIntervalsOutsideTheSource) {
  for (const tav::TAV_intv bad : {tav::TAV_intv{0, 10}, tav::TAV_intv{30, 41}, tav::TAV_intv{20, 10}}) {
    tav::TAV_Pars pars = simpleRequest(spec);
    pars.conds[0].vtcIntvSets[0].intervals = {{1, 10}, bad};
    errors.str("");
    tav::Computer fresh;
    ASSERT_EQ(fresh.Init(pars, errors), tav::kSuccess);
    EXPECT_EQ(fresh.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, errors),
              tav::kInvalidParameters);
    EXPECT_EQ(errors.str(),
              "An interval (" + std::to_string(bad.first) + ", " + std::to_string(bad.last) + ") for vtc '" +
                  folder.file("noise.vtc") +
                  "', 40 volumes, in condition 'rest' was wrongly specified (N.B. last-first+1 must be "
                  "greater than AR-order(1))");
  }
}

TEST_F(Condition, RejectsIntervalsBeyondTheTarget) {
  tav::TAV_Pars pars = simpleRequest(spec);
  spec.nrOfVolumes = 30;
  pars.conds[0].vtcIntvSets[0].trgVtcName = writeNoise("short.vtc", spec, 2);
  pars.conds[0].vtcIntvSets[0].intervals = {{1, 31}};
  EXPECT_EQ(compute(pars), tav::kInvalidParameters);
  EXPECT_THAT(errors.str(),
              HasSubstr("An interval (1, 31) for vtc '" + folder.file("short.vtc") + "', 30 volumes, "));
}

TEST_F(Condition, AnIntervalIsLongerThanTheOrder) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.arOrder = 3;
  pars.conds[0].vtcIntvSets[0].intervals = {{5, 8}};
  EXPECT_EQ(compute(pars), tav::kSuccess);
  pars.conds[0].vtcIntvSets[0].intervals = {{5, 7}};
  EXPECT_EQ(compute(pars), tav::kInvalidParameters);
  EXPECT_THAT(errors.str(), HasSubstr("AR-order(3)"));
}

TEST_F(Condition, AMissingCourseIsAnInternalError) {
  tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(computer.Init(pars, errors), tav::kSuccess);
  pars.vois[0].name = "other";
  EXPECT_EQ(computer.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, errors),
            tav::kTerminalError);
  EXPECT_EQ(
      errors.str(),
      "Failed to retrieve precomputed voi time-course for VOI 'other', Condition 'rest' (internal error)");
}

TEST_F(Condition, ATruncatedFileIsNoticed) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.vois[0].nVoxels = 1;  // the one in the first slice, which stays whole
  const std::string path = folder.file("noise.vtc");
  const std::string bytes = contentOf(path);
  for (const std::size_t missing : {std::size_t{1}, std::size_t{2 * 40 * 2}, std::size_t{2 * 40 * 3}}) {
    fakes::writeBytes(path, bytes.substr(0, bytes.size() - missing));
    errors.str("");
    tav::Computer fresh;
    ASSERT_EQ(fresh.Init(pars, errors), tav::kSuccess);
    EXPECT_EQ(fresh.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, errors),
              tav::kTerminalError);
    EXPECT_EQ(errors.str(), "Could not read data from vtc '" + path +
                                "'\nThe file was corrupted (not of expected size) or made inaccessible");
  }
}

TEST_F(Condition, SkipsVoxelsWhoseFirstValueIsNotAboveTheThreshold) {
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(5);
  addCondition(pars, "c",
               writeVtc("v.vtc", spec,
                        [&](int x, int, int z, int t) {
                          if (t == 0 && x == 1) return z == 0 ? 100.0F : 101.0F;
                          return 1000.0F + 50.0F * noise();
                        }),
               {{1, 40}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_EQ(observed(0, 1), 0.0F);
  EXPECT_EQ(null(2, 1), 0.0F);
  EXPECT_NE(observed(0, 3), 0.0F);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 1\t(25%)\n"));
}

TEST_F(Condition, SkipsAVoxelThatIsTooLowInOneOfItsFiles) {
  tav::TAV_Pars pars = requestOn(spec);
  const std::string high = writeNoise("high.vtc", spec, 1);
  Noise noise(5);
  const std::string low = writeVtc(
      "low.vtc", spec, [&](int x, int, int, int) { return x == 1 ? 7.0F : 1000.0F + 50.0F * noise(); });
  pars.conds.push_back({"c", {{high, high, {{1, 40}}}, {low, low, {}}}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 2\t(50%)\n"));
}

// A slice of the long file is more than one piece, one of the short file is not.
TEST_F(Condition, FilesOfDifferentLengthsAreReadInPiecesThatEachOfThemCanHold) {
  fakes::VtcSpec shorter = fakes::cellGrid(120, 100, 1, 12), longer = shorter;
  longer.nrOfVolumes = 100;
  const auto value = [](int x, int y, int, int t) {
    return 1000.0F + static_cast<float>((x * 31 + y * 17 + t * (7 + x % 5) + t * t * 3) % 97);
  };
  const std::string first = writeVtc("long.vtc", longer, value), last = writeVtc("short.vtc", shorter, value);
  std::vector<std::vector<float>> found;
  for (const auto& [a, b] : {std::pair{first, last}, std::pair{last, first}}) {
    tav::TAV_Pars pars = requestOn(longer);
    pars.conds.push_back({"c", {{a, a, {{1, 12}}}, {b, b, {{1, 12}}}}});
    ASSERT_EQ(compute(pars), tav::kSuccess) << errors.str();
    EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 0\t(0%)\n"));
    const float* measures = computer.rawMaps1->values(0);
    found.emplace_back(measures, measures + computer.rawMaps1->nrOfVoxels());
    computer.CleanUp();
  }
  EXPECT_EQ(found[0], found[1]) << "both files hold the same first volumes";
}

// Each file of two has a voxel of its own that is too low, whichever comes first.
TEST_F(Condition, EveryFileOfAConditionDecidesAboutInclusion) {
  tav::TAV_Pars pars = requestOn(spec);
  const auto lowAt = [&](const std::string& name, int lowX, int lowZ) {
    Noise noise(5);
    return writeVtc(name, spec, [noise, lowX, lowZ](int x, int, int z, int) mutable {
      return x == lowX && z == lowZ ? 7.0F : 1000.0F + 50.0F * noise();
    });
  };
  const std::string first = lowAt("first.vtc", 1, 0), second = lowAt("second.vtc", 1, 1);
  pars.conds.push_back({"c", {{first, first, {{1, 40}}}, {second, second, {{1, 40}}}}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 2\t(50%)\n"));
  EXPECT_EQ(observed(0, 1), 0.0F);
  EXPECT_EQ(observed(0, 3), 0.0F);
}

TEST_F(Condition, SkipsBackgroundOfFloatData) {
  spec.dataType = 2;
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(5);
  addCondition(pars, "c",
               writeVtc("v.vtc", spec,
                        [&](int x, int, int z, int) {
                          const float value = 1000.0F + 50.0F * noise();
                          return x == 0 ? value : z == 0 ? kNaN : 100.0F;
                        }),
               {{1, 40}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 2\t(50%)\n"))
      << "a first value that is NaN skips the voxel";
  EXPECT_EQ(observed(0, 1), 0.0F);
}

TEST_F(Condition, NaNAfterTheFirstValueReachesTheRawMap) {
  spec.dataType = 2;
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(5);
  addCondition(pars, "c",
               writeVtc("v.vtc", spec,
                        [&](int x, int, int z, int t) {
                          const float value = 1000.0F + 50.0F * noise();
                          return x == 1 && z == 1 && t == 7 ? kNaN : value;
                        }),
               {{1, 40}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_TRUE(std::isnan(observed(0, 3)));
  EXPECT_FALSE(std::isnan(observed(0, 1)));
}

TEST_F(Condition, AConstantVoxelIsIllDefined) {
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(5);
  addCondition(pars, "c",
               writeVtc("v.vtc", spec,
                        [&](int x, int, int, int) { return x == 1 ? 500.0F : 1000.0F + 50.0F * noise(); }),
               {{1, 40}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_EQ(observed(0, 1), 0.0F);
  EXPECT_EQ(null(0, 1), 0.0F);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels ill-defined: 2\t(50%)\n"));
}

TEST_F(Condition, CountsFailedNullFitsAndSetsThemToZero) {
  spec.dataType = 2;
  tav::TAV_Pars pars = requestOn(spec);
  Noise noise(5);
  // The reference has no surrogates: its course is incomplete, though not in the interval.
  addCondition(
      pars, "c",
      writeVtc("v.vtc", spec,
               [&](int x, int, int, int t) { return x == 0 && t == 39 ? kNaN : 1000.0F + 50.0F * noise(); }),
      {{1, 30}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_GT(observed(0, 1), 0.0F);
  EXPECT_EQ(null(0, 1), 0.0F);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels ill-defined: 0\t(0%)\n\tSurrogates ill-defined: 4\t(100%)\n"));
}

TEST_F(Condition, WithoutIntervalsEveryVoxelIsIllDefined) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.conds[0].vtcIntvSets[0].intervals.clear();
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels ill-defined: 4\t(100%)\n"));
  EXPECT_THAT(log.str(), HasSubstr("\tTotal nr. time-points: 0\n"));
}

TEST_F(Condition, WithoutSlicesThereIsNothingToDo) {
  tav::TAV_Pars pars = requestOn(spec);
  pars.vtcZEnd = pars.vtcZStart;
  pars.conds.push_back({"empty", {}});
  ASSERT_EQ(compute(pars), tav::kSuccess);
  EXPECT_THAT(log.str(), HasSubstr("\tVoxels skipped: 0\t(0%)\n"));
}

TEST_F(Condition, OneTimeBaseGivesOneSetOfNullMeasures) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  const auto nullMeasures = [&](std::int64_t base) {
    simo::setTimeBase(base);
    EXPECT_EQ(compute(pars), tav::kSuccess);
    std::vector<float> values(computer.rawMaps2->values(0), computer.rawMaps2->values(0) + 4);
    computer.CleanUp();
    return values;
  };
  const auto first = nullMeasures(1000);
  EXPECT_EQ(nullMeasures(1000), first);
  EXPECT_NE(nullMeasures(99000), first);
}

TEST_F(Condition, TwoSetsOfOneFileEqualTwoCopiesOfIt) {
  tav::TAV_Pars shared = requestOn(spec);
  const std::string path = writeNoise("a.vtc", spec, 1);
  const std::string copy = writeNoise("b.vtc", spec, 1);
  shared.conds.push_back({"c", {{path, path, {{1, 20}}}, {path, path, {{21, 40}}}}});
  tav::TAV_Pars copies = shared;
  copies.conds[0].vtcIntvSets[1].srcVtcName = copies.conds[0].vtcIntvSets[1].trgVtcName = copy;
  ASSERT_EQ(compute(shared), tav::kSuccess);
  const std::vector<float> expected(computer.rawMaps1->values(0), computer.rawMaps1->values(0) + 4);
  computer.CleanUp();
  ASSERT_EQ(compute(copies), tav::kSuccess);
  EXPECT_EQ(std::vector<float>(computer.rawMaps1->values(0), computer.rawMaps1->values(0) + 4), expected);
}

TEST_F(Condition, SharedTargetsOfPairsAreReadOncePerSlice) {
  tav::TAV_Pars pars = requestOn(spec);
  const std::string a = writeNoise("a.vtc", spec, 1);
  const std::string b = writeNoise("b.vtc", spec, 2);
  const std::string target = writeNoise("t.vtc", spec, 3);
  pars.separateSrcTrgVtcs = true;
  pars.conds.push_back({"c", {{a, target, {{1, 40}}}, {b, target, {{1, 40}}}}});
  EXPECT_EQ(compute(pars), tav::kSuccess) << errors.str() << ": a second read per slice would meet the end";
  EXPECT_NE(observed(0, 3), 0.0F);
}

TEST_F(Condition, IntervalsArePooledAsTheMeanOfTheirAverages) {
  tav::TAV_Pars once = simpleRequest(spec);
  once.conds[0].vtcIntvSets[0].intervals = {{1, 20}};
  ASSERT_EQ(compute(once), tav::kSuccess);
  const float expected = observed(0, 1);
  computer.CleanUp();
  once.conds[0].vtcIntvSets[0].intervals = {{1, 20}, {1, 20}};
  ASSERT_EQ(compute(once), tav::kSuccess);
  EXPECT_EQ(observed(0, 1), expected) << "doubling and halving are exact";
}
