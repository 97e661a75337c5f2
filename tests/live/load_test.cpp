#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "live/loaded_study.h"
#include "live/stand_in_reference.h"
#include "request/problem.h"
#include "tav/at_once.h"
#include "tests/live/live_fixture.h"
#include "tests/support/message_of.h"

namespace {

class LiveLoading : public LiveStudy {};

TEST_F(LiveLoading, HasTheVoxelsOfTheMaskAndTheAtlas) {
  const auto study = loaded();
  std::size_t inMask = 0;
  for (int z = 0; z < small_study::kDims[2]; ++z)
    for (int y = 0; y < small_study::kDims[1]; ++y)
      for (int x = 0; x < small_study::kDims[0]; ++x) inMask += small_study::inMask(x, y, z) ? 1U : 0U;
  EXPECT_EQ(study->cells.size(), inMask);
  EXPECT_TRUE(std::is_sorted(study->cells.begin(), study->cells.end()));
  ASSERT_TRUE(study->atlas);
  EXPECT_EQ(study->atlas->regions.size(), 3U);
  EXPECT_EQ(study->atlas->regions.at(1).name, "A");
  EXPECT_EQ(study->vtcs.size(), 2U);
  EXPECT_GE(study->bytes, 2 * study->plan.space.grid.size.voxels() * small_study::kVolumes * 2);
}

TEST_F(LiveLoading, NeedsNoReference) {
  study::Request request = this->request();
  request.references.clear();
  const auto study = live::loadStudy(request, loadOptions());
  EXPECT_FALSE(study->atlas);
  EXPECT_TRUE(study->plan.request.references.empty());
  EXPECT_FALSE(study->cells.empty());
}

TEST_F(LiveLoading, StandsInAVoxelOfTheMaskNearTheMiddle) {
  study::Request request = this->request();
  request.references.clear();
  const auto voxel = live::withStandIn(request).references.at(0).voxels.at(0);
  EXPECT_EQ(voxel, (std::array<int, 3>{6, 5, 4}));
  formats::Image3D mask = formats::readImage(scratch_.file("mask.nii.gz"));
  mask.values.assign(mask.values.size(), 0);
  for (const std::array<int, 3> one : {std::array{6, 1, 4}, std::array{8, 6, 3}, std::array{3, 5, 7}})
    mask.values[mask.header.size.index(one[0], one[1], one[2])] = 1;
  formats::writeImage(scratch_.file("mask.nii.gz"), mask);
  EXPECT_EQ(live::withStandIn(request).references.at(0).voxels.at(0), (std::array<int, 3>{8, 6, 3}));
}

TEST_F(LiveLoading, SaysHowMuchMemoryIsMissingBeforeItReads) {
  live::LoadOptions options = loadOptions();
  options.mostBytes = 1000;
  const std::string message =
      messageOf<study::InputError>([&] { static_cast<void>(live::loadStudy(request(), options)); });
  EXPECT_NE(message.find("its time series need 2 MB of memory, and 1 MB are allowed"), std::string::npos)
      << message;
  EXPECT_NE(message.find("--mem"), std::string::npos);
}

TEST_F(LiveLoading, RefusesMethodPlugin) {
  const std::string message =
      messageOf<study::InputError>([&] { static_cast<void>(loaded("method = 'plugin'\n")); });
  EXPECT_NE(message.find("leave method \"plugin\" out"), std::string::npos) << message;
}

TEST_F(LiveLoading, StopsWhenItIsCalledOff) {
  const std::atomic<bool> cancel = true;
  live::LoadOptions options = loadOptions();
  options.cancel = &cancel;
  EXPECT_THROW(static_cast<void>(live::loadStudy(request(), options)), tav::Cancelled);
}

TEST_F(LiveLoading, TellsHowFarItIs) {
  live::LoadOptions options = loadOptions();
  double last = 0;
  bool descends = false, toldSize = false;
  options.progress = [&](double share, const std::string& words) {
    descends = descends || share < last;
    last = share;
    toldSize = toldSize || words.find("MB of time series") != std::string::npos;
  };
  static_cast<void>(live::loadStudy(request(), options));
  EXPECT_EQ(last, 1);
  EXPECT_FALSE(descends);
  EXPECT_TRUE(toldSize);
}

}  // namespace
