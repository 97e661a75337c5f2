// What a picture of a map set is made of: each is compared with the picture of volumes and settings that
// are written down here.
#include "inspect/map_pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "formats/file_error.h"
#include "formats/map_set.h"
#include "formats/nifti_writer.h"
#include "render/slice_picture.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// 4 x 3 x 2 cells of 10 mm. Two maps: "dTAV" with thresholds, "RC" with a display range alone.
class MapPictures : public testing::Test {
 protected:
  MapPictures() {
    set_.xEnd = 4, set_.yEnd = 3, set_.zEnd = 2;
    for (int axis = 0; axis < 3; ++axis) set_.affine.at(axis, axis) = 10;
    set_.thresholdNames = {"thres q=0.010", "thres q=0.050", "thres q=0.100"};
    formats::Map map;
    map.name = "face: dTAV";
    map.lowerThreshold = 4, map.upperThreshold = 12;
    map.positiveColorFrom = 64, map.positiveColorTo = 255;
    map.negativeColorFrom = 16384, map.negativeColorTo = 65280;
    map.useColors = true;
    map.thresholds = {kInfinity, 4, 2};
    for (int i = 0; i < 24; ++i) map.values.push_back(static_cast<float>(i % 2 == 0 ? i : -i) / 2);
    set_.maps.push_back(map);
    map.name = "face: dTAV RC";
    map.lowerThreshold = 0.2F, map.upperThreshold = 0.7F;
    map.thresholds = {0, 0, 0};
    set_.maps.push_back(map);
    formats::saveMapSet(scratch_.file("m.tav"), set_);

    formats::ImageHeader header;
    header.size = {4, 3, 2};
    header.affine = set_.affine;
    header.sformCode = 1;
    for (int i = 0; i < 24; ++i) anatomy_.push_back(static_cast<float>(100 + 7 * i));
    formats::writeImage(scratch_.file("t1.nii"), {header, anatomy_});
    formats::LabelImage labels{header, std::vector<std::int32_t>(24, 0)};
    labels.header.dataType = formats::DataType::kUint8;
    labels.labels[5] = labels.labels[14] = 1;
    labels.labels[6] = 2;
    formats::writeLabelImage(scratch_.file("dseg.nii"), labels);
    scratch_.write("dseg.tsv", "index\tname\n1\tV1\n2\tV2\n");
  }
  inspect::PictureOptions options() const {
    inspect::PictureOptions options;
    options.maps = {scratch_.file("m.tav")};
    options.folder = scratch_.file("pictures");
    options.anatomy = scratch_.file("t1.nii");
    return options;
  }
  // The picture of map `index` as it should be, with q = 0.05.
  render::SlicePicture expected(std::size_t index) const {
    const formats::Map& map = set_.maps[index];
    render::SlicePicture picture;
    picture.size = {4, 3, 2};
    picture.affine = set_.affine.m;
    picture.anatomy = anatomy_;
    picture.map = map.values;
    picture.lower = map.lowerThreshold;
    picture.upper = map.upperThreshold;
    picture.positive = render::warmScale();
    picture.negative = render::coldScale();
    picture.title = map.name;
    picture.caption = index == 0 ? "false discovery rate q = 0.05: threshold 4" : "shown from 0.2 on";
    return picture;
  }
  static bool shows(const std::string& file, const render::SlicePicture& picture) {
    return contentOf(file) == render::renderPng(picture);
  }

  formats::MapSet set_;
  std::vector<float> anatomy_;
  Scratch scratch_;
};

TEST_F(MapPictures, EveryMapHasItsPictureInTheOrderOfTheSet) {
  const auto files = inspect::drawMaps(options());
  EXPECT_EQ(files, (std::vector<std::string>{scratch_.file("pictures/m_face_dTAV.png"),
                                             scratch_.file("pictures/m_face_dTAV_RC.png")}));
  EXPECT_TRUE(shows(files[0], expected(0)));
  EXPECT_TRUE(shows(files[1], expected(1)));
}

TEST_F(MapPictures, TheColoursThatTheSetKeepsCanBeAskedFor) {
  inspect::PictureOptions asked = options();
  asked.colours = inspect::MapColours::kStored;
  render::SlicePicture picture = expected(0);
  picture.positive = {64, 255};
  picture.negative = {16384, 65280};
  EXPECT_TRUE(shows(inspect::drawMaps(asked)[0], picture));
}

TEST_F(MapPictures, MapsWithoutNegativeColoursShowNoNegativeValues) {
  for (formats::Map& map : set_.maps) map.negativeColorFrom = map.negativeColorTo = 0;
  formats::saveMapSet(scratch_.file("m.tav"), set_);
  render::SlicePicture picture = expected(0);
  picture.negative = {};
  EXPECT_TRUE(shows(inspect::drawMaps(options())[0], picture));
}

TEST_F(MapPictures, NegativeColoursMayBeginOrEndInBlack) {
  formats::Map& map = set_.maps[0];
  const std::pair<std::int32_t, std::int32_t> colours{map.negativeColorFrom, map.negativeColorTo};
  for (const bool begin : {true, false}) {
    map.negativeColorFrom = begin ? 0 : colours.first;
    map.negativeColorTo = begin ? colours.second : 0;
    formats::saveMapSet(scratch_.file("m.tav"), set_);
    EXPECT_TRUE(shows(inspect::drawMaps(options())[0], expected(0)));
  }
}

TEST_F(MapPictures, AnotherQShowsItsOwnThresholdAndKeepsTheRatioOfTheRange) {
  inspect::PictureOptions asked = options();
  asked.q = 0.1;
  render::SlicePicture picture = expected(0);
  picture.lower = 2, picture.upper = 6;
  picture.caption = "false discovery rate q = 0.1: threshold 2";
  EXPECT_TRUE(shows(inspect::drawMaps(asked)[0], picture));
}

TEST_F(MapPictures, NothingIsShownWhereNothingPasses) {
  inspect::PictureOptions asked = options();
  asked.q = 0.01;
  render::SlicePicture picture = expected(0);
  picture.lower = picture.upper = kInfinity;
  picture.caption = "false discovery rate q = 0.01: no voxel survives";
  EXPECT_TRUE(shows(inspect::drawMaps(asked)[0], picture));
}

TEST_F(MapPictures, TheRegionThatIsNamedIsOutlined) {
  inspect::PictureOptions asked = options();
  asked.labels = scratch_.file("dseg.nii");
  asked.region = "V1";
  render::SlicePicture picture = expected(0);
  picture.reference.assign(24, 0);
  picture.reference[5] = picture.reference[14] = 1;
  picture.title = "face: dTAV   reference: V1";
  EXPECT_TRUE(shows(inspect::drawMaps(asked)[0], picture));
  asked.region = "V9";
  EXPECT_EQ(reasonOf([&] { return inspect::drawMaps(asked); }),
            "has no region named V9. `tavmap info` lists its regions.");
}

TEST_F(MapPictures, AsManySlicesAsAskedFor) {
  inspect::PictureOptions asked = options();
  asked.slices = 1;
  render::SlicePicture picture = expected(0);
  picture.slices = 1;
  EXPECT_TRUE(shows(inspect::drawMaps(asked)[0], picture));
}

TEST_F(MapPictures, UnknownQAndOtherGridsAreNamed) {
  inspect::PictureOptions asked = options();
  asked.q = 0.2;
  EXPECT_EQ(reasonOf([&] { return inspect::drawMaps(asked); }),
            "the maps have no threshold for q = 0.200. They have: thres q=0.010, thres q=0.050, thres "
            "q=0.100.");
  asked = options();
  formats::ImageHeader header;
  header.size = {4, 3, 1};
  header.sformCode = 1;
  formats::writeImage(scratch_.file("flat.nii"), {header, std::vector<float>(12, 1)});
  asked.anatomy = scratch_.file("flat.nii");
  EXPECT_EQ(reasonOf([&] { return inspect::drawMaps(asked); }),
            "has 4 x 3 x 1 voxels and the maps have 4 x 3 x 2. Give an anatomy on the grid of the maps.");
}

}  // namespace
