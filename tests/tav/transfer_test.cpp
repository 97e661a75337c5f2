#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tav/fdr_thresholds.h"
#include "tests/tav/run_fixture.h"

using ::testing::Each;
using ::testing::ElementsAre;

namespace {

class Transfer : public RunTest {
 protected:
  Transfer() { pars.conds = {{"faces", {}}, {"houses", {}}}; }

  // Makes raw maps and the map set, with raw values that differ from voxel to voxel.
  void prepare(const tav::RunOptions& options = {}) {
    computer = std::make_unique<tav::Computer>(options, &listener, &store);
    ASSERT_EQ(computer->Init(pars, errors), tav::kSuccess);
    ASSERT_EQ(computer->createVOIResultMAP(pars.vois[0], pars, errors), tav::kSuccess);
    Noise noise(8);
    for (int measure = 0; measure < 3; ++measure) {
      for (std::size_t voxel = 0; voxel < computer->rawMaps1->nrOfVoxels(); ++voxel) {
        const float null = 0.1F * std::fabs(noise());
        computer->rawMaps1->values(measure)[voxel] = voxel % 4 == 0 ? 0.0F
                                                     : voxel < 30   ? 1.0F + null
                                                                    : 0.1F * std::fabs(noise());
        computer->rawMaps2->values(measure)[voxel] = voxel % 4 == 0 ? 0.0F : null;
      }
    }
  }
  int transfer(int condIndex) {
    return computer->transferConditionResults(pars.vois[0], pars.conds[static_cast<std::size_t>(condIndex)],
                                              condIndex, pars, errors);
  }
  [[nodiscard]] const tav::MemoryStore::Map& map(std::size_t index) const { return store.maps()[index]; }
  [[nodiscard]] const std::vector<float>& thresholds(std::size_t index) const {
    return map(index).header.thresholds;
  }

  tav::TAV_Pars pars = requestOn(fakes::cellGrid(10, 5, 4, 10));
  std::unique_ptr<tav::Computer> computer;
};

}  // namespace

TEST_F(Transfer, NamesMapsAfterTypeAndCondition) {
  prepare();
  ASSERT_EQ(transfer(0), tav::kSuccess);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < 6; ++i) names.push_back(map(i).header.name);
  EXPECT_THAT(names, ElementsAre("faces: Ref2Vox", "faces: Vox2Ref", "faces: Inst", "faces: dTAV",
                                 "faces: dTAV IT", "faces: dTAV RC"));
}

TEST_F(Transfer, PutsConditionsBehindOneAnother) {
  pars.mapTypes = {tav::REF2VOX, tav::INST, tav::DTAV};
  prepare();
  ASSERT_EQ(transfer(1), tav::kSuccess);
  EXPECT_EQ(map(3).header.name, "houses: Ref2Vox");
  EXPECT_EQ(map(4).header.name, "houses: Inst");
  EXPECT_EQ(map(5).header.name, "houses: dTAV");
  EXPECT_TRUE(std::isnan(map(0).values[0])) << "the first condition's maps are untouched";
}

TEST_F(Transfer, WritesValuesAndTheirThresholds) {
  prepare();
  ASSERT_EQ(transfer(0), tav::kSuccess);
  const std::size_t nrOfVoxels = computer->rawMaps1->nrOfVoxels();
  EXPECT_EQ(map(0).values[1], computer->rawMaps1->values(0)[1] * 100.0F);
  EXPECT_EQ(map(0).values[0], 0.0F);
  Array3D<float> null(4, 5, 10);
  for (std::size_t v = 0; v < nrOfVoxels; ++v) null.elements()[v] = computer->rawMaps2->values(0)[v] * 100.0F;
  Array3D<float> observed(4, 5, 10);
  std::copy(map(0).values.begin(), map(0).values.end(), observed.elements());
  std::vector<float> expected(3);
  ASSERT_TRUE(tav::bstrTwoSideFDR(pars.qThresholds, observed, null, 2, expected, errors));
  EXPECT_EQ(thresholds(0), expected);
  EXPECT_GT(expected[0], 0.0F);
}

TEST_F(Transfer, SetsDisplayThresholds) {
  prepare();
  ASSERT_EQ(transfer(0), tav::kSuccess);
  for (std::size_t type = 0; type < 5; ++type) {
    EXPECT_EQ(map(type).header.lowerThreshold, thresholds(type)[0]) << type;
    EXPECT_EQ(map(type).header.upperThreshold, (type == tav::INST ? 5.0F : 3.0F) * thresholds(type)[0])
        << type;
  }
  EXPECT_EQ(map(tav::DTAV_RC).header.lowerThreshold, 0.2F);
  EXPECT_EQ(map(tav::DTAV_RC).header.upperThreshold, 0.7F);
  EXPECT_THAT(thresholds(tav::DTAV_RC), Each(0.0F)) << "it has none";
}

// Observed 1/150, 2/150, ... 1 and a null map of the lower half of that: three values of q stop the walk at
// three places.
TEST_F(Transfer, TheSmallestQGivesTheDisplayThreshold) {
  pars.qThresholds = {0.3F, 0.05F, 0.1F};
  pars.cvConstant = 1;
  prepare();
  for (int measure = 0; measure < 3; ++measure) {
    for (std::size_t voxel = 0, rank = 0; voxel < computer->rawMaps1->nrOfVoxels(); ++voxel) {
      const float value = voxel % 4 == 0 ? 0.0F : static_cast<float>(++rank) / 150.0F;
      computer->rawMaps1->values(measure)[voxel] = measure == 1 ? 0.0F : value;
      computer->rawMaps2->values(measure)[voxel] = measure == 1 ? 0.0F : value / 2;
    }
  }
  ASSERT_EQ(transfer(0), tav::kSuccess);
  for (const auto type : std::to_array<std::size_t>({tav::REF2VOX, tav::INST, tav::DTAV})) {
    const auto& found = thresholds(type);
    ASSERT_GT(found[0], found[1]) << type;
    ASSERT_GT(found[1], found[2]) << type;
    EXPECT_EQ(map(type).header.lowerThreshold, found[0]) << type;
    EXPECT_EQ(map(type).header.upperThreshold, (type == tav::INST ? 5.0F : 3.0F) * found[0]) << type;
  }
}

TEST_F(Transfer, SetsColours) {
  prepare();
  ASSERT_EQ(transfer(0), tav::kSuccess);
  const std::int32_t expected[6][4] = {{64, 255, 0, 0},           {16384, 65280, 0, 0},
                                       {4194304, 16711680, 0, 0}, {64, 255, 16384, 65280},
                                       {64, 255, 16384, 65280},   {64, 255, 16384, 65280}};
  for (std::size_t type = 0; type < 6; ++type) {
    const tav::MapHeader& header = map(type).header;
    EXPECT_EQ(header.positive.from, expected[type][0]) << type;
    EXPECT_EQ(header.positive.to, expected[type][1]) << type;
    EXPECT_EQ(header.negative.from, expected[type][2]) << type;
    EXPECT_EQ(header.negative.to, expected[type][3]) << type;
  }
}

TEST_F(Transfer, OnlyInstHasItsUpperThresholdFiveTimesTheLower) {
  pars.mapTypes = {tav::INST};
  prepare();
  ASSERT_EQ(transfer(0), tav::kSuccess);
  EXPECT_GT(thresholds(0)[0], 0.0F);
  EXPECT_EQ(map(0).header.upperThreshold, 5.0F * thresholds(0)[0]);
}

TEST_F(Transfer, FailsWhenTheStoreHasNoMap) {
  prepare();
  store.nullMap = 2;
  EXPECT_EQ(transfer(0), tav::kTerminalError);
  EXPECT_EQ(errors.str(),
            "Failed to retrieve an allocated CMP map-pointer for VOI 'seed', Condition 'faces'");
}

TEST_F(Transfer, FailsForAnUnknownMapType) {
  pars.mapTypes = {tav::DTAV_RC, static_cast<tav::MapType>(6)};
  prepare();
  EXPECT_EQ(transfer(0), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "ERROR : Unknown TAV map-type encountered");
}

TEST_F(Transfer, WithoutMapTypesDoesNothing) {
  prepare();
  pars.mapTypes.clear();
  EXPECT_EQ(transfer(0), tav::kSuccess);
  EXPECT_EQ(store.callCount("values"), 0U);
}

TEST_F(Transfer, AnUnknownConstantIsReportedAndTheTransferGoesOn) {
  pars.mapTypes = {tav::INST};
  pars.cvConstant = 7;
  prepare();
  EXPECT_EQ(transfer(0), tav::kSuccess);
  EXPECT_EQ(errors.str(), "Unknown value for cVconst: 7 , only 1 or 2 allowed");
}

TEST_F(Transfer, StepUpWithoutSurvivorsWritesInfinity) {
  pars.mapTypes = {tav::INST};
  tav::RunOptions options;
  options.thresholdRule = tav::ThresholdRule::kStepUp;
  prepare(options);
  for (std::size_t voxel = 0; voxel < computer->rawMaps2->nrOfVoxels(); ++voxel)
    computer->rawMaps2->values(2)[voxel] = 9.0F;
  ASSERT_EQ(transfer(0), tav::kSuccess);
  EXPECT_EQ(thresholds(0)[0], std::numeric_limits<float>::infinity());
  EXPECT_EQ(map(0).header.lowerThreshold, std::numeric_limits<float>::infinity());
}

TEST_F(Transfer, FurtherNullsEnterTheThresholds) {
  pars.mapTypes = {tav::INST};
  tav::RunOptions options;
  options.nullDraws = 3;
  prepare(options);
  auto& block = computer->raw.furtherNulls->append(computer->rawMaps2->nrOfVoxels());
  std::fill_n(block.plane(2), block.planeSize(), 9.0F);
  ASSERT_EQ(transfer(0), tav::kSuccess);
  const float largest = *std::max_element(map(0).values.begin(), map(0).values.end());
  EXPECT_EQ(thresholds(0)[0], largest) << "two of three null values exceed everything";
}

TEST_F(Transfer, TheReferencesOwnVoxelsMayStayOutOfTheSearch) {
  pars.mapTypes = {tav::INST};
  // At the first q the other 22 strong voxels fall just short; two more would do.
  pars.qThresholds = {0.043F, 0.1F};
  pars.cvConstant = 1;
  const std::size_t voxels = 10 * 5 * 4;
  const std::array<std::size_t, 2> own = {0, voxels - 50};  // the first voxels of the first and last slices
  const auto thresholdsWith = [&](bool outside, float ownValue) {
    tav::RunOptions options;
    options.thresholdRule = tav::ThresholdRule::kStepUp;
    options.searchOutsideReference = outside;
    prepare(options);
    for (std::size_t voxel = 30; voxel < voxels; ++voxel)
      computer->rawMaps1->values(2)[voxel] = voxel % 4 == 0 ? 0.0F : 1e-6F;
    for (const std::size_t voxel : own) computer->rawMaps1->values(2)[voxel] = ownValue;
    EXPECT_EQ(transfer(0), tav::kSuccess);
    for (const std::size_t voxel : own)
      EXPECT_EQ(map(0).values[voxel], ownValue * pars.mapScaleFactor) << "it is mapped";
    return thresholds(0);
  };
  const auto withoutThem = thresholdsWith(false, 0.0F);
  EXPECT_TRUE(std::isinf(withoutThem[0]));
  EXPECT_GT(withoutThem[1], 0.9F);
  EXPECT_EQ(thresholdsWith(true, 9.0F), withoutThem);
  EXPECT_EQ(thresholdsWith(true, 0.0F), withoutThem);
  // Whatever the order in which a VOI lists its voxels.
  const std::int32_t* const listed = pars.vois[0].voxels;
  std::vector<std::int32_t> reversed(listed + 3, listed + 6);
  reversed.insert(reversed.end(), listed, listed + 3);
  pars.vois[0].voxels = reversed.data();
  EXPECT_EQ(thresholdsWith(true, 9.0F), withoutThem);
  pars.vois[0].voxels = listed;
  EXPECT_NE(thresholdsWith(false, 9.0F), withoutThem);
}
