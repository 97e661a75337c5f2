// Whole maps of surrogates against a literal computation: every voxel with every surrogate, one at a time.
#include "tav/family_wise.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "simo/detrend.h"
#include "simo/pair_fit.h"
#include "tav/map_values.h"
#include "tests/tav/run_fixture.h"

namespace {

constexpr int kVolumes = 40, kOrder = 2;
constexpr std::size_t kDraws = 130;  // more than are computed at once
constexpr float kBelow = 7.0F;       // an excluded voxel's values, about

// What the run told, for as long as it may be looked at.
class Notes : public Listener {
 public:
  explicit Notes(const tav::TAV_Pars& request) : request_(request) {}

  void onReferences(const std::vector<std::unique_ptr<tav::VoiTc>>& voiTcs) override {
    const simo::Matrix<float>& rows = voiTcs.at(0)->surrogates;
    for (int s = 0; s < rows.nRows; ++s) {
      const float* const first = rows[rows.rowBase + s] + rows.colBase;
      surrogates.emplace_back(first, first + rows.nCols);
    }
  }
  void onCondition(const tav::ConditionOutcome& outcome) override {
    familyWise = outcome.familyWise;
    for (const tav::MapOutcome& map : outcome.maps) {
      maps[map.type].assign(map.values, map.values + outcome.status.size());
      nullP[map.type] = map.nullP;
    }
    for (const tav::RawValues& raw : outcome.nulls) {
      for (const tav::MapType type : request_.mapTypes) {
        std::vector<float> values(raw.size);
        computeMapValues(type, raw, request_, values.data());
        nulls[type].insert(nulls[type].end(), values.begin(), values.end());
      }
    }
  }

  std::vector<std::vector<float>> surrogates;
  tav::FamilyWise familyWise;
  std::map<tav::MapType, std::vector<float>> nulls;  // of the voxels' own draws
  std::map<tav::MapType, std::vector<float>> maps, nullP;

 private:
  const tav::TAV_Pars& request_;
};

class FamilyWiseRun : public RunTest {
 protected:
  FamilyWiseRun() {
    spec.dataType = 2;  // floats, as they are
    request = requestOn(spec);
    request.nSurrogateSims = static_cast<int>(kDraws);
    request.arOrder = kOrder;
    request.mapTypes = {tav::REF2VOX, tav::VOX2REF, tav::DTAV, tav::DTAV_IT, tav::DTAV_RC};
    Noise noise(3);
    const std::string file = writeVtc("noise.vtc", spec, [&](int x, int y, int z, int t) {
      std::vector<float>& course = courses[index(x, y, z)];
      const float past = t > 0 ? course.back() - level(x, y, z) : 0.0F;
      course.push_back(level(x, y, z) + 0.4F * past + noise());
      return course.back();
    });
    addCondition(request, "rest", file, {{1, 18}, {20, kVolumes}});
  }

  std::size_t index(int x, int y, int z) const {
    return static_cast<std::size_t>((z * spec.dimY() + y) * spec.dimX() + x);
  }
  static float level(int x, int y, int z) { return (x + 2 * y + z) % 5 == 4 ? kBelow : 1000.0F; }

  Notes run(tav::RunOptions options) {
    options.timeBase = 4711;
    options.kernel = "reference";
    Notes notes(request);
    tav::Computer computer(options, &notes, &store);
    EXPECT_EQ(computer.computeTAVs(request, errors), tav::kSuccess) << errors.str();
    return notes;
  }
  static tav::RunOptions calibrated() {
    tav::RunOptions options;
    options.fitForm = tav::FitForm::kLeastSquares;
    options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
    options.nullDraws = 20;
    options.thresholdRule = tav::ThresholdRule::kStepUp;
    options.fweDraws = static_cast<int>(kDraws);
    return options;
  }

  fakes::VtcSpec spec = fakes::cellGrid(5, 4, 4, kVolumes);
  tav::TAV_Pars request;
  std::vector<std::vector<float>> courses = std::vector<std::vector<float>>(spec.nrOfVoxels());
};

simo::Feedback feedbackOf(const std::vector<float>& x, const std::vector<float>& y,
                          const std::vector<tav::TAV_intv>& intervals) {
  simo::LaggedMoments xx(kOrder), yy(kOrder), xy(kOrder);
  for (const tav::TAV_intv& interval : intervals) {
    const int length = interval.last - interval.first + 1;
    std::vector<double> a(static_cast<std::size_t>(length)), b(a);
    (void)simo::detrendRow(x.data() + interval.first - 1, length, a.data());
    (void)simo::detrendRow(y.data() + interval.first - 1, length, b.data());
    xx.add(a.data(), a.data(), length);
    yy.add(b.data(), b.data(), length);
    xy.add(a.data(), b.data(), length);
  }
  return simo::PairFit::feedback(simo::PairFit(kOrder).errors(xx, yy, xy).value());
}

// Draw after draw, the values of one kind of map at all voxels that take part.
std::vector<std::vector<tav::MapPoint>> literalMaps(const Notes& notes,
                                                    const std::vector<std::vector<float>>& courses,
                                                    const tav::TAV_Pars& request, tav::MapType type,
                                                    const std::function<bool(std::size_t)>& takesPart) {
  std::vector<std::vector<tav::MapPoint>> maps;
  for (const std::vector<float>& surrogate : notes.surrogates) {
    auto& map = maps.emplace_back();
    for (std::size_t voxel = 0; voxel < courses.size(); ++voxel) {
      if (!takesPart(voxel)) continue;
      const simo::Feedback found =
          feedbackOf(surrogate, courses[voxel], request.conds[0].vtcIntvSets[0].intervals);
      const auto to = static_cast<float>(found.xToY), from = static_cast<float>(found.yToX),
                 instant = static_cast<float>(found.instantaneous);
      float value = 0;
      computeMapValues(type, {{&to, &from, &instant}, 1}, request, &value);
      map.push_back({static_cast<std::uint32_t>(voxel), value});
    }
  }
  return maps;
}

struct Maxima {
  std::vector<float> magnitudes;
  std::vector<double> masses;
};

Maxima maximaOf(const std::vector<std::vector<tav::MapPoint>>& maps, float level, tav::ClusterFinder finder) {
  Maxima maxima;
  for (const std::vector<tav::MapPoint>& map : maps) {
    float largest = 0;
    std::vector<tav::MapPoint> points;
    for (const tav::MapPoint& point : map) {
      largest = std::max(largest, std::abs(point.value));
      if (std::abs(point.value) >= level) points.push_back(point);
    }
    maxima.magnitudes.push_back(largest);
    maxima.masses.push_back(finder.largestMass(points, level));
  }
  std::sort(maxima.magnitudes.begin(), maxima.magnitudes.end());
  std::sort(maxima.masses.begin(), maxima.masses.end());
  return maxima;
}

void expectMaxima(const tav::NullMaxima& found, const Maxima& expected) {
  ASSERT_EQ(found.magnitudes().size(), expected.magnitudes.size());
  for (std::size_t i = 0; i < expected.magnitudes.size(); ++i) {
    EXPECT_FLOAT_EQ(found.magnitudes()[i], expected.magnitudes[i]) << i;
    EXPECT_NEAR(found.masses()[i], expected.masses[i], 1e-4) << i;
  }
}

TEST_F(FamilyWiseRun, EqualsALiteralComputation) {
  const Notes notes = run(calibrated());
  ASSERT_EQ(notes.surrogates.size(), kDraws);
  const auto takesPart = [&](std::size_t voxel) { return courses[voxel][0] > 100.0F; };
  for (const tav::MapType type : {tav::REF2VOX, tav::VOX2REF, tav::DTAV}) {
    const tav::NullMaxima& found = notes.familyWise.at(type);
    const auto maps = literalMaps(notes, courses, request, type, takesPart);
    expectMaxima(found, maximaOf(maps, found.level(), tav::ClusterFinder({5, 4, 4})));
    EXPECT_GT(found.masses().back(), 0) << "no draw has a cluster";
  }
}

TEST_F(FamilyWiseRun, TheReferenceTakesNoPartWhenItIsNotSearched) {
  tav::RunOptions options = calibrated();
  options.searchOutsideReference = true;
  const Notes notes = run(options);
  const auto takesPart = [&](std::size_t voxel) {
    return courses[voxel][0] > 100.0F && voxel != index(0, 0, 0) && voxel != index(0, 0, 3);
  };
  const tav::NullMaxima& found = notes.familyWise.at(tav::DTAV);
  const auto maps = literalMaps(notes, courses, request, tav::DTAV, takesPart);
  expectMaxima(found, maximaOf(maps, found.level(), tav::ClusterFinder({5, 4, 4})));
}

// The share of magnitudes, whatever their sign; zeros stand for what could not be computed.
TEST_F(FamilyWiseRun, ClustersFormFromOneInAThousand) {
  const Notes notes = run(calibrated());
  for (const tav::MapType type : {tav::REF2VOX, tav::VOX2REF, tav::DTAV}) {
    std::vector<float> magnitudes = notes.nulls.at(type);
    for (float& value : magnitudes) value = std::abs(value);
    std::erase(magnitudes, 0.0F);
    std::sort(magnitudes.rbegin(), magnitudes.rend());
    EXPECT_EQ(notes.familyWise.at(type).level(), magnitudes.at(magnitudes.size() / 1000)) << type;
  }
}

// Emptied where the instantaneous measure is small, a surrogate's map would have hardly a value.
TEST_F(FamilyWiseRun, TheEmptiedDifferenceIsHeldAgainstTheWholeOne) {
  request.instLowerThres = 1000;  // above any measure
  const Notes notes = run(calibrated());
  const tav::NullMaxima &whole = notes.familyWise.at(tav::DTAV), &emptied = notes.familyWise.at(tav::DTAV_IT);
  EXPECT_GT(whole.magnitudes().front(), 0);
  EXPECT_EQ(emptied.magnitudes(), whole.magnitudes());
  EXPECT_EQ(emptied.masses(), whole.masses());
  EXPECT_EQ(emptied.level(), whole.level());
}

// Chunks of draws are shared out unevenly then.
TEST_F(FamilyWiseRun, IsTheSameOnAnyNumberOfThreads) {
  tav::RunOptions options = calibrated();
  const Notes alone = run(options);
  for (const int threads : {2, 3, 150}) {
    options.threads = threads;
    const Notes together = run(options);
    for (const auto& [type, maxima] : alone.familyWise) {
      EXPECT_EQ(together.familyWise.at(type).magnitudes(), maxima.magnitudes()) << threads;
      EXPECT_EQ(together.familyWise.at(type).masses(), maxima.masses()) << threads;
    }
  }
}

TEST_F(FamilyWiseRun, SingleVoxelsHaveTheirShareOfTheNullValues) {
  tav::RunOptions options = calibrated();
  options.nullP = true;
  const Notes notes = run(options);
  for (const tav::MapType type : {tav::REF2VOX, tav::VOX2REF, tav::DTAV, tav::DTAV_IT}) {
    const std::vector<float>& nulls = notes.nulls.at(type == tav::DTAV_IT ? tav::DTAV : type);
    const auto count = std::count_if(nulls.begin(), nulls.end(), [](float null) { return null != 0; });
    ASSERT_EQ(notes.nullP.at(type).size(), spec.nrOfVoxels());
    for (std::size_t i = 0; i < spec.nrOfVoxels(); ++i) {
      const float value = std::abs(notes.maps.at(type)[i]);
      if (value == 0) continue;
      const auto reaching =
          std::count_if(nulls.begin(), nulls.end(), [&](float null) { return std::abs(null) >= value; });
      EXPECT_FLOAT_EQ(notes.nullP.at(type)[i],
                      (1.0F + static_cast<float>(reaching)) / (1.0F + static_cast<float>(count)));
    }
  }
  EXPECT_TRUE(notes.nullP.at(tav::DTAV_RC).empty());
  EXPECT_TRUE(run(calibrated()).nullP.at(tav::DTAV).empty());
}

TEST_F(FamilyWiseRun, SharesHaveNone) {
  const Notes notes = run(calibrated());
  EXPECT_EQ(notes.familyWise.count(tav::DTAV_RC), 0U);
  EXPECT_EQ(notes.familyWise.size(), 4U);
}

TEST_F(FamilyWiseRun, HasNoMoreDrawsThanThereAreSurrogates) {
  request.nSurrogateSims = 30;
  EXPECT_EQ(run(calibrated()).familyWise.at(tav::DTAV).magnitudes().size(), 30U);
}

TEST_F(FamilyWiseRun, IsComputedWhenAskedForAndInLeastSquares) {
  tav::RunOptions options = calibrated();
  options.fweDraws = 0;
  EXPECT_TRUE(run(options).familyWise.empty());
  options.fweDraws = 10;
  options.fitForm = tav::FitForm::kWritten;
  EXPECT_TRUE(run(options).familyWise.empty());
}

}  // namespace
