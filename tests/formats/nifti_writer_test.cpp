#include "formats/nifti_writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <limits>

#include "formats/nifti.h"
#include "formats/nifti_stream.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::DataType;
using formats::ImageHeader;

ImageHeader header(DataType type, int volumes) {
  ImageHeader h;
  h.size = {3, 2, 2};
  h.volumes = volumes;
  h.series = volumes > 1;
  h.dataType = type;
  h.trMs = volumes > 1 ? 1350 : 0;
  h.affine = {{-2, 0, 0, 10, 0, 2.5, 0, -20, 0, 0, 3, -30, 0, 0, 0, 1}};
  h.qform = h.affine;
  h.sformCode = 4;
  h.qformCode = 1;
  h.description = "made for a test";
  return h;
}

std::vector<float> ramp(std::size_t count) {
  std::vector<float> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<float>(i);
  return values;
}

class WriterForm : public testing::TestWithParam<std::tuple<DataType, int, const char*>> {};

TEST_P(WriterForm, ComesBackAsWritten) {
  const auto [type, volumes, name] = GetParam();
  const Scratch folder;
  ImageHeader h = header(type, volumes);
  h.extensions = {{6, "{\"a\": 1}"}, {6, "sixteen bytes 16"}};
  const std::vector<float> values = ramp(12U * static_cast<unsigned>(volumes));
  formats::NiftiWriter writer(folder.file(name), h);
  writer.writeValues(values.data(), values.size());
  writer.commit();

  formats::NiftiStream stream(folder.file(name));
  const ImageHeader& again = stream.header();
  EXPECT_EQ(again.size, h.size);
  EXPECT_EQ(again.volumes, volumes);
  EXPECT_EQ(again.dataType, type);
  EXPECT_EQ(again.trMs, h.trMs);
  EXPECT_EQ(again.sformCode, 4);
  EXPECT_EQ(again.qformCode, 1);
  EXPECT_EQ(again.description, h.description);
  for (unsigned i = 0; i < 16; ++i) {
    EXPECT_NEAR(again.affine.m[i], h.affine.m[i], 1e-5);
    EXPECT_NEAR(again.qform.m[i], h.qform.m[i], 1e-5);
  }
  ASSERT_EQ(again.extensions.size(), 2U);
  EXPECT_EQ(again.extensions[0].bytes.substr(0, 8), "{\"a\": 1}");
  EXPECT_EQ(again.extensions[1].bytes.substr(0, 16), "sixteen bytes 16");
  std::vector<float> back(values.size());
  stream.readValues(back.data(), back.size());
  stream.finish();
  EXPECT_EQ(back, values);
}
INSTANTIATE_TEST_SUITE_P(NiftiWriter, WriterForm,
                         testing::Combine(testing::Values(DataType::kUint8, DataType::kInt16,
                                                          DataType::kUint16, DataType::kInt32,
                                                          DataType::kFloat32),
                                          testing::Values(1, 3), testing::Values("i.nii", "i.nii.gz")));

TEST(NiftiWriter, RoundsToWholeNumbersHalfToEven) {
  const Scratch folder;
  formats::Image3D image{header(DataType::kInt16, 1), {0.5F, 1.5F, -2.5F, 2.6F, -2.6F, 0, 0, 0, 0, 0, 0, 0}};
  formats::writeImage(folder.file("i.nii"), image);
  const auto values = formats::readImage(folder.file("i.nii")).values;
  EXPECT_EQ(std::vector<float>(values.begin(), values.begin() + 5), (std::vector<float>{0, 2, -2, 3, -3}));
}

TEST(NiftiWriter, RefusesValuesThatTheTypeCannotHold) {
  const Scratch folder;
  for (const float wrong : {256.0F, -1.0F, std::nanf(""), std::numeric_limits<float>::infinity()}) {
    formats::Image3D image{header(DataType::kUint8, 1), ramp(12)};
    image.values[4] = wrong;
    EXPECT_EQ(reasonOf([&] { formats::writeImage(folder.file("i.nii"), image); }),
              "a value does not fit the type uint8. Choose float32.");
    EXPECT_NE(::access(folder.file("i.nii").c_str(), F_OK), 0);
  }
}

TEST(NiftiWriter, KeepsNanInFloats) {
  const Scratch folder;
  formats::Image3D image{header(DataType::kFloat32, 1), ramp(12)};
  image.values[4] = std::nanf("");
  formats::writeImage(folder.file("i.nii.gz"), image);
  EXPECT_TRUE(std::isnan(formats::readImage(folder.file("i.nii.gz")).values[4]));
}

TEST(NiftiWriter, RefusesTooManyAndTooFewValues) {
  const Scratch folder;
  const auto values = ramp(13);
  formats::NiftiWriter writer(folder.file("i.nii"), header(DataType::kFloat32, 1));
  EXPECT_NE(reasonOf([&] { writer.writeValues(values.data(), 13); }), "");
  formats::NiftiWriter shortOne(folder.file("i.nii"), header(DataType::kFloat32, 1));
  shortOne.writeValues(values.data(), 11);
  EXPECT_NE(reasonOf([&] { shortOne.commit(); }), "");
}

TEST(NiftiWriter, RefusesAGridThatTheHeaderCannotHold) {
  const Scratch folder;
  ImageHeader h = header(DataType::kFloat32, 1);
  h.size.x = 40000;
  EXPECT_EQ(reasonOf([&] { formats::NiftiWriter(folder.file("i.nii"), h); }),
            "an image of 40000 x 2 x 2 x 1 values does not fit a NIfTI-1 header. "
            "Write smaller images, 32,767 along an axis at most.");
}

TEST(NiftiWriter, MarksLabelImages) {
  const Scratch folder;
  formats::LabelImage image{header(DataType::kInt32, 1), {0, 1, 2, 100000, 0, 0, 0, 0, 0, 0, 0, 0}};
  formats::writeLabelImage(folder.file("l.nii.gz"), image);
  const auto again = formats::readLabelImage(folder.file("l.nii.gz"));
  EXPECT_EQ(again.header.intentCode, formats::kLabelIntent);
  EXPECT_EQ(again.labels, image.labels);
}

}  // namespace
