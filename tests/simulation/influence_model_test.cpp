#include "simulation/influence_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using simulation::expectedMeasures;
using simulation::InfluenceModel;
using simulation::Kind;
using simulation::Measures;
using simulation::plantedModel;

const std::vector<std::size_t> kVoxels(9, 50);

TEST(InfluenceModel, HasTheReferenceFirstAndTwoRegionsOfEachOtherKind) {
  const InfluenceModel model = plantedModel(1);
  ASSERT_EQ(model.regions.size(), 9U);
  EXPECT_EQ(model.reference().kind, Kind::kReference);
  std::multiset<Kind> kinds;
  std::set<std::string> names;
  for (const auto& region : model.regions) {
    kinds.insert(region.kind);
    names.insert(region.name);
  }
  EXPECT_EQ(names.size(), 9U);
  EXPECT_EQ(kinds.count(Kind::kReference), 1U);
  for (const Kind kind : {Kind::kDriven, Kind::kDriving, Kind::kInstantaneous, Kind::kUnrelated})
    EXPECT_EQ(kinds.count(kind), 2U);
}

TEST(InfluenceModel, PlantsNothingAtStrengthZero) {
  const InfluenceModel model = plantedModel(0);
  for (std::size_t k = 1; k < model.regions.size(); ++k) {
    const Measures measures = expectedMeasures(model, kVoxels, k);
    EXPECT_NEAR(measures.ref2vox, 0, 1e-12);
    EXPECT_NEAR(measures.vox2ref, 0, 1e-12);
    EXPECT_NEAR(measures.inst, 0, 1e-12);
  }
}

TEST(InfluenceModel, PlantsOneMeasurePerKindAndTheOthersAreZero) {
  const InfluenceModel model = plantedModel(1);
  for (std::size_t k = 1; k < model.regions.size(); ++k) {
    const Kind kind = model.regions[k].kind;
    const Measures measures = expectedMeasures(model, kVoxels, k);
    EXPECT_EQ(measures.ref2vox > 0.05, kind == Kind::kDriven) << k;
    EXPECT_EQ(measures.vox2ref > 0.05, kind == Kind::kDriving) << k;
    EXPECT_EQ(measures.inst > 0.05, kind == Kind::kInstantaneous) << k;
    if (kind != Kind::kDriven) {
      EXPECT_NEAR(measures.ref2vox, 0, 1e-12) << k;
    }
    if (kind != Kind::kDriving) {
      EXPECT_NEAR(measures.vox2ref, 0, 1e-12) << k;
    }
    if (kind != Kind::kInstantaneous) {
      EXPECT_NEAR(measures.inst, 0, 1e-12) << k;
    }
  }
}

// y(t) = 0.5 x(t-1) + e(t) with white x of variance 1 and e of variance 1: the past of x takes the
// prediction error of y from 1.25 to 1.
TEST(InfluenceModel, MeasuresOfAWhiteProcessAreThoseByHand) {
  InfluenceModel model;
  model.regions = {{"r", Kind::kReference, 0, 0, 0, 0, 0}, {"d", Kind::kDriven, 0, 0.5, 0, 0, 0}};
  EXPECT_NEAR(expectedMeasures(model, {1, 1}, 1).ref2vox, std::log(1.25), 1e-12);
  model.regions[1] = {"d", Kind::kDriving, 0, 0, 0.5, 0, 0};
  EXPECT_NEAR(expectedMeasures(model, {1, 1}, 1).vox2ref, std::log(1.25), 1e-12);
  model.regions[1] = {"i", Kind::kInstantaneous, 0, 0, 0, 0.6, 0};
  EXPECT_NEAR(expectedMeasures(model, {1, 1}, 1).inst, -std::log(1 - 0.36), 1e-12);
}

TEST(InfluenceModel, KindsHaveNamesThatCanBeReadBack) {
  for (const Kind kind :
       {Kind::kReference, Kind::kDriven, Kind::kDriving, Kind::kInstantaneous, Kind::kUnrelated}) {
    Kind read = kind == Kind::kDriven ? Kind::kDriving : Kind::kDriven;
    EXPECT_TRUE(simulation::kindFromName(nameOf(kind), read));
    EXPECT_EQ(read, kind);
  }
  Kind untouched = Kind::kDriving;
  EXPECT_FALSE(simulation::kindFromName("drives", untouched));
  EXPECT_EQ(untouched, Kind::kDriving);
}

}  // namespace
