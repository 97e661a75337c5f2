#include "formats/map_set.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <filesystem>

#include "formats/map_set_json.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/sample_map_set.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::MapSet;
using formats_test::sampleMapSet;

TEST(MapSet, ComesBackAsSaved) {
  const Scratch folder;
  const MapSet set = sampleMapSet();
  formats::saveMapSet(folder.file("a.tav"), set);
  const MapSet again = formats::loadMapSet(folder.file("a.tav"));
  EXPECT_EQ(again.grid(), (formats::GridSize{3, 2, 2}));
  EXPECT_EQ(again.xStart, 57);
  EXPECT_EQ(again.zEnd, 65);
  EXPECT_EQ(again.resolution, 3);
  EXPECT_EQ(again.engineVersion, "1.5");
  EXPECT_EQ(again.thresholdNames, set.thresholdNames);
  EXPECT_EQ(again.spaceCode, 3);
  for (unsigned i = 0; i < 16; ++i) EXPECT_NEAR(again.affine.m[i], set.affine.m[i], 1e-4) << i;
  ASSERT_EQ(again.maps.size(), 2U);
  EXPECT_EQ(again.maps[0].name, "faces: Ref2Vox");
  EXPECT_EQ(again.maps[0].kind, 101);
  EXPECT_EQ(again.maps[0].lowerThreshold, 0.1F);
  EXPECT_EQ(again.maps[0].upperThreshold, 0.3F);
  EXPECT_EQ(again.maps[0].positiveColorFrom, 64);
  EXPECT_EQ(again.maps[0].positiveColorTo, 16711680);
  EXPECT_TRUE(again.maps[0].useColors);
  EXPECT_EQ(again.maps[0].thresholds[0], 0.1F);
  EXPECT_TRUE(std::isnan(again.maps[0].thresholds[1]));
  EXPECT_EQ(again.maps[0].values, set.maps[0].values);
  EXPECT_EQ(again.maps[1].values[0], set.maps[1].values[0]);
  EXPECT_TRUE(std::isnan(again.maps[1].values[3]));
}

TEST(MapSet, IsAnImageForOtherReaders) {
  const Scratch folder;
  formats::saveMapSet(folder.file("a.tav"), sampleMapSet());
  const auto header = formats::readImageHeader(folder.file("a.tav"));
  EXPECT_EQ(header.volumes, 2);
  EXPECT_EQ(header.dataType, formats::DataType::kFloat32);
  ASSERT_EQ(header.extensions.size(), 1U);
  EXPECT_EQ(header.extensions[0].code, 6);
}

TEST(MapSet, WritesColoursAsPeopleReadThem) {
  EXPECT_EQ(formats::colorText(255), "#ff0000");  // red is the lowest byte
  EXPECT_EQ(formats::colorText(65280), "#00ff00");
  EXPECT_EQ(formats::colorText(16711680), "#0000ff");
}

TEST(MapSet, RefusesAnOrdinaryImage) {
  const Scratch folder;
  formats::Image3D image;
  image.header.size = {1, 1, 1};
  image.values = {1};
  formats::writeImage(folder.file("i.nii"), image);
  EXPECT_EQ(reasonOf([&] { (void)formats::loadMapSet(folder.file("i.nii")); }),
            "it is an image, but no map set of this program. Give a .tav file.");
}

// An image of one cell whose extension is `json`.
std::string messageFor(const std::string& json) {
  const Scratch folder;
  formats::Image3D image;
  image.header.size = {1, 1, 1};
  image.header.extensions = {{6, json}};
  image.values = {1};
  formats::writeImage(folder.file("a.tav"), image);
  return reasonOf([&] { (void)formats::loadMapSet(folder.file("a.tav")); });
}

std::string textWith(const std::string& from, const std::string& to) {
  MapSet set = sampleMapSet();
  set.maps.resize(1);
  std::string json = formats::mapSetToJson(set);
  const auto at = json.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return json.replace(at, from.size(), to);
}

TEST(MapSet, RefusesAnExtensionThatDoesNotFit) {
  EXPECT_EQ(messageFor(textWith("1.5", "1.5")),
            "its header extension does not fit its data. Compute the maps again.");
  EXPECT_EQ(messageFor(textWith("\"format_version\":1", "\"format_version\":2")),
            "format_version: the map set is of a newer version. Update this program.");
  EXPECT_EQ(messageFor(textWith("\"x_end\"", "\"xEnd\"")), "box: \"x_end\" is missing. Add \"x_end\".");
  EXPECT_EQ(messageFor(textWith("\"resolution\":3", "\"resolution\":0")),
            "its header extension does not fit its data. Compute the maps again.");
  EXPECT_EQ(messageFor(textWith("#400000", "red")),
            "maps[0].positive_colors[0]: a color is expected. Write it as #rrggbb.");
  EXPECT_EQ(messageFor(textWith("\"thres q=0.050\",", "")),
            "maps[0].thresholds: their number is not that of the names. Compute the maps again.");
  EXPECT_EQ(messageFor(textWith("\"maps\":[{", "\"maps\":[[{")),
            "line 1: this is no valid JSON. Correct the text there.");
}

TEST(MapSet, RefusesToSaveWhatIsIncomplete) {
  const Scratch folder;
  const std::string path = folder.file("a.tav");
  MapSet noMaps = sampleMapSet();
  noMaps.maps.clear();
  EXPECT_EQ(reasonOf([&] { formats::saveMapSet(path, noMaps); }),
            "the map set has no maps. Compute at least one map.");
  MapSet shortMap = sampleMapSet();
  shortMap.maps[1].values.pop_back();
  EXPECT_EQ(reasonOf([&] { formats::saveMapSet(path, shortMap); }),
            "the map \"faces: dTAV\" does not fit its map set. Compute it again.");
  MapSet noBox = sampleMapSet();
  noBox.xEnd = noBox.xStart;
  EXPECT_EQ(reasonOf([&] { formats::saveMapSet(path, noBox); }),
            "the map set has an empty bounding box. Give a box of at least one cell.");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(MapSet, KeepsTheOlderFileWhenTheDiskIsFull) {
  const Scratch folder;
  formats::saveMapSet(folder.file("a.tav"), sampleMapSet());
  const std::string before = contentOf(folder.file("a.tav"));
  const formats_test::ScopedSystemCalls calls;
  formats::systemCalls().write = [](int, const void*, std::size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { formats::saveMapSet(folder.file("a.tav"), sampleMapSet()); }),
            "cannot write the file (No space left on device). Free some space or choose another folder.");
  EXPECT_EQ(contentOf(folder.file("a.tav")), before);
}

}  // namespace
