#include "live/voxel_look.h"

#include "tests/live/live_fixture.h"

namespace {

class LiveVoxel : public LiveStudy {
 protected:
  live::VoxelLook look(const std::shared_ptr<const live::LoadedStudy>& study, const live::Ask& ask,
                       std::size_t cell) {
    live::Engine engine(study, 1);
    maps_ = engine.compute(ask, live::Care::kDraft, kNeverCancelled);
    return live::lookAt(*study, maps_, cell);
  }
  static std::size_t firstCellOf(const live::LoadedStudy& study, std::int32_t label) {
    for (const std::uint32_t cell : study.cells)
      if (study.plan.places->labelAt(cell) == label) return cell;
    return 0;
  }
  live::LiveMaps maps_;
};

// The logarithm of the quotient of error variances is the measure in the map.
TEST_F(LiveVoxel, ModelsGiveTheMeasuresOfTheMaps) {
  const auto study = loaded();
  const std::size_t cell = firstCellOf(*study, 2);
  for (const int order : {1, 4}) {
    live::Ask ask = askFor(label(1));
    ask.order = order;
    const live::VoxelLook found = look(study, ask, cell);
    const auto index = static_cast<std::size_t>(
        std::lower_bound(study->cells.begin(), study->cells.end(), cell) - study->cells.begin());
    const double scale = study->plan.request.settings.mapScale;
    const double there = scale * std::log(found.voxelAlone->errorVariance / found.voxel->errorVariance),
                 back =
                     scale * std::log(found.referenceAlone->errorVariance / found.reference->errorVariance);
    EXPECT_NEAR(there, static_cast<double>(maps_.of(tav::REF2VOX)->values[index]), 1e-3 * there + 1e-3);
    EXPECT_NEAR(back, static_cast<double>(maps_.of(tav::VOX2REF)->values[index]), 1e-3 * back + 1e-3);
    EXPECT_EQ(found.voxel->onReference.size(), static_cast<std::size_t>(order));
    EXPECT_EQ(found.samples, 2 * (small_study::kVolumes - order));
  }
}

TEST_F(LiveVoxel, ADrivenVoxelFollowsOneVolumeLater) {
  const auto study = loaded();
  const live::VoxelLook found = look(study, askFor(label(1)), firstCellOf(*study, 2));
  const auto r = [&](int lag) { return found.lagged[static_cast<std::size_t>(lag + live::kMostLags)].r; };
  for (int lag = -live::kMostLags; lag <= live::kMostLags; ++lag) {
    EXPECT_EQ(found.lagged[static_cast<std::size_t>(lag + live::kMostLags)].lag, lag);
    EXPECT_TRUE(lag == 1 || r(1) > r(lag)) << lag;
  }
}

TEST_F(LiveVoxel, CorrelationOfASeriesWithItselfIsOne) {
  const auto study = loaded();
  const std::size_t cell = study->cells[200];
  const live::VoxelLook found = look(study, askFor(drawing({cell})), cell);
  EXPECT_NEAR(found.lagged[live::kMostLags].r, 1, 1e-6);
  EXPECT_NEAR(found.lagged[live::kMostLags + 2].r, found.lagged[live::kMostLags - 2].r, 1e-9);
  EXPECT_FALSE(found.voxel) << "the past of a series twice";
}

TEST_F(LiveVoxel, SeriesHaveTheIntervalsOfTheCondition) {
  const auto study = loaded();
  const live::VoxelLook found = look(study, askFor(label(1), "face"), study->cells[0]);
  ASSERT_EQ(found.runs.size(), 2U);
  EXPECT_EQ(found.runs[0].run, "run1");
  EXPECT_EQ(found.runs[0].trSeconds, 2);
  EXPECT_EQ(found.runs[0].voxel.size(), static_cast<std::size_t>(small_study::kVolumes));
  EXPECT_GE(found.runs[0].intervals.size(), 1U);
  int volumes = 0;
  for (const auto& interval : found.runs[0].intervals) volumes += interval.second;
  EXPECT_LT(volumes, small_study::kVolumes);
}

}  // namespace
