#include "formats/nifti.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "tests/fakes/vtc_file.h"
#include "tests/formats/nifti_bytes.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using fakes::writeBytes;
using formats_test::gzipped;
using formats_test::niftiData;
using formats_test::niftiHeader;
using formats_test::NiftiSpec;

std::vector<double> ramp(std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<double>(i * 5);
  return values;
}

std::string written(const Scratch& folder, const NiftiSpec& spec, const std::vector<double>& values) {
  folder.write("image.nii", niftiHeader(spec) + niftiData(spec, values));
  return folder.file("image.nii");
}

struct TypeCase {
  int code, bits;
  double least, largest;
};
const TypeCase kTypes[] = {{2, 8, 0, 255},
                           {256, 8, -128, 127},
                           {4, 16, -32768, 32767},
                           {512, 16, 0, 65535},
                           {8, 32, -2147483648.0, 2147483647.0},
                           {768, 32, 0, 4294967295.0},
                           {1024, 64, -4e9, 4e9},
                           {1280, 64, 0, 8e9},
                           {16, 32, -1.5, 3.25},
                           {64, 64, -1e-3, 1e3}};

class EveryForm : public testing::TestWithParam<std::tuple<TypeCase, int, bool, bool, bool>> {};

TEST_P(EveryForm, GivesTheScaledValues) {
  const auto [type, version, bigEndian, compressed, scaled] = GetParam();
  NiftiSpec spec;
  spec.version = version;
  spec.bigEndian = bigEndian;
  spec.dataType = type.code;
  spec.bitsPerValue = type.bits;
  if (scaled) spec.slope = 0.5, spec.intercept = -3;
  std::vector<double> stored = ramp(24);
  stored[0] = type.least;
  stored[23] = type.largest;
  const Scratch folder;
  const std::string bytes = niftiHeader(spec) + niftiData(spec, stored);
  folder.write("i.nii", compressed ? gzipped(bytes) : bytes);  // the name does not count
  const formats::Image3D image = formats::readImage(folder.file("i.nii"));
  for (std::size_t i = 0; i < 24; ++i) {
    const double exact = type.code == 16 ? static_cast<double>(static_cast<float>(stored[i])) : stored[i];
    EXPECT_EQ(image.values[i], static_cast<float>(scaled ? 0.5 * exact - 3 : exact)) << i;
  }
  EXPECT_EQ(image.header.size, (formats::GridSize{4, 3, 2}));
  EXPECT_EQ(image.at(1, 2, 1), image.values[21]);
  EXPECT_EQ(image.header.description, "described");
  EXPECT_EQ(image.header.intentName, "intended");
}
INSTANTIATE_TEST_SUITE_P(Nifti, EveryForm,
                         testing::Combine(testing::ValuesIn(kTypes), testing::Values(1, 2), testing::Bool(),
                                          testing::Bool(), testing::Bool()));

TEST(NiftiRead, ReadsSlopeZeroAsNoScaling) {
  const Scratch folder;
  NiftiSpec spec;
  spec.slope = 0;
  spec.intercept = 7;
  EXPECT_EQ(formats::readImage(written(folder, spec, ramp(24))).values[2], 10.0F);
}

TEST(NiftiRead, ReadsANotFiniteSlopeAsNoScaling) {
  const Scratch folder;
  NiftiSpec spec;
  spec.slope = std::nan("");
  EXPECT_EQ(formats::readImage(written(folder, spec, ramp(24))).values[2], 10.0F);
}

TEST(NiftiRead, KeepsNanAndInfinity) {
  const Scratch folder;
  std::vector<double> values = ramp(24);
  values[3] = std::nan("");
  values[4] = std::numeric_limits<double>::infinity();
  const auto image = formats::readImage(written(folder, NiftiSpec{}, values));
  EXPECT_TRUE(std::isnan(image.values[3]));
  EXPECT_TRUE(std::isinf(image.values[4]));
}

TEST(NiftiRead, PicksOneVolumeOfASeries) {
  const Scratch folder;
  NiftiSpec spec;
  spec.dim = {4, 4, 3, 2, 3, 1, 1, 1};
  const std::string path = written(folder, spec, ramp(72));
  const auto image = formats::readVolume(path, 2);
  EXPECT_EQ(image.values.front(), 240.0F);
  EXPECT_EQ(image.header.volumes, 1);
  EXPECT_EQ(reasonOf([&] { (void)formats::readImage(path); }),
            "it is a series of 3 volumes where one is expected. Give an image of one volume.");
  EXPECT_EQ(reasonOf([&] { (void)formats::readVolume(path, 3); }),
            "it has no volume 3. Count volumes from 0.");
}

TEST(NiftiRead, ReadsTwoDimensionsAsOneSlice) {
  const Scratch folder;
  NiftiSpec spec;
  spec.dim = {2, 6, 4, 0, 0, 0, 0, 0};
  EXPECT_EQ(formats::readImage(written(folder, spec, ramp(24))).header.size, (formats::GridSize{6, 4, 1}));
}

struct TimeCase {
  double pixdim;
  int units;
  double trMs;
};
class RepetitionTime : public testing::TestWithParam<TimeCase> {};
TEST_P(RepetitionTime, IsGivenInMilliseconds) {
  const Scratch folder;
  NiftiSpec spec;
  spec.dim = {4, 4, 3, 2, 2, 1, 1, 1};
  spec.pixdim[4] = GetParam().pixdim;
  spec.unitCode = 2 + GetParam().units;
  EXPECT_EQ(formats::readImageHeader(written(folder, spec, ramp(48))).trMs, GetParam().trMs);
}
INSTANTIATE_TEST_SUITE_P(Nifti, RepetitionTime,
                         testing::Values(TimeCase{2.2, 8, 2200}, TimeCase{2200, 16, 2200},
                                         TimeCase{2.2e6, 24, 2200}, TimeCase{0.72, 0, 720},
                                         TimeCase{2, 32, 0}, TimeCase{0, 8, 0}, TimeCase{-1, 8, 0}));

TEST(NiftiRead, TakesExtensionsWithTheirCodes) {
  NiftiSpec spec;
  const auto extension = [](std::int32_t code, const std::string& text) {
    std::string bytes(8, '\0');
    bytes[0] = 32;
    bytes[4] = static_cast<char>(code);
    return bytes + text + std::string(24 - text.size(), '\0');
  };
  spec.extensions = extension(6, "one") + extension(4, "two");
  const Scratch folder;
  const auto header = formats::readImageHeader(written(folder, spec, ramp(24)));
  ASSERT_EQ(header.extensions.size(), 2U);
  EXPECT_EQ(header.extensions[0].code, 6);
  EXPECT_EQ(header.extensions[1].bytes.substr(0, 3), "two");
}

TEST(NiftiRead, PassesOverABrokenExtension) {
  NiftiSpec spec;
  spec.extensions = std::string("\xFF\xFF\xFF\x7F\x06\0\0\0 broken!", 16);
  const Scratch folder;
  const auto image = formats::readImage(written(folder, spec, ramp(24)));
  EXPECT_TRUE(image.header.extensions.empty());
  EXPECT_EQ(image.values[1], 5.0F);
}

TEST(LabelImageRead, TakesWholeNumbersStoredAsFloats) {
  const Scratch folder;
  std::vector<double> values(24, 0);
  values[5] = 7.00001;
  const auto image = formats::readLabelImage(written(folder, NiftiSpec{}, values));
  EXPECT_EQ(image.labels[5], 7);
  EXPECT_EQ(image.labels[6], 0);
}

TEST(LabelImageRead, RefusesFractionsAndNan) {
  const Scratch folder;
  const std::vector<std::pair<double, std::string>> cases = {
      {1.5, "1.5"}, {std::nan(""), "nan"}, {3e9, "3e+09"}};
  for (const auto& [wrong, text] : cases) {
    std::vector<double> values(24, 0);
    values[5] = wrong;
    const std::string path = written(folder, NiftiSpec{}, values);
    EXPECT_EQ(reasonOf([&] { (void)formats::readLabelImage(path); }),
              "it holds " + text +
                  ", which is no whole number, so it is no label image. Give a label image "
                  "(*_dseg.nii.gz); make one of a probability map by a threshold, or set "
                  "'probability' in the [[reference]] of a request.");
  }
}

}  // namespace
