// Headers that are wrong by accident or on purpose: each ends with its own message.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "formats/nifti.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/nifti_bytes.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using fakes::writeBytes;
using formats_test::gzipped;
using formats_test::NiftiSpec;

constexpr const char* kCheck = ". Check that the file is complete and was written by a NIfTI program.";

std::string messageFor(const std::string& bytes) {
  const Scratch folder;
  folder.write("image.nii", bytes);
  return reasonOf([&] { (void)formats::readImage(folder.file("image.nii")); });
}

std::string messageFor(const NiftiSpec& spec) {
  return messageFor(formats_test::niftiHeader(spec) + std::string(24 * 8, '\0'));
}

struct HostileCase {
  const char* name;
  std::function<void(NiftiSpec&)> spoil;
  std::string message;
};

class HostileHeader : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileHeader, EndsWithItsMessage) {
  for (const int version : {1, 2}) {
    for (const bool bigEndian : {false, true}) {
      NiftiSpec spec;
      spec.version = version;
      spec.bigEndian = bigEndian;
      GetParam().spoil(spec);
      EXPECT_EQ(messageFor(spec), GetParam().message) << "version " << version << " big-endian " << bigEndian;
    }
  }
}

const HostileCase kCases[] = {
    {"NoDimensions", [](NiftiSpec& s) { s.dim[0] = 0; },
     std::string("its header gives 0 as number of dimensions") + kCheck},
    {"EightDimensions", [](NiftiSpec& s) { s.dim[0] = 8; },
     std::string("its header gives 8 as number of dimensions") + kCheck},
    {"NegativeExtent", [](NiftiSpec& s) { s.dim[2] = -3; },
     std::string("its header gives -3 as extent of dimension 2") + kCheck},
    {"ZeroExtent", [](NiftiSpec& s) { s.dim[3] = 0; },
     std::string("its header gives 0 as extent of dimension 3") + kCheck},
    {"FiveDimensions", [](NiftiSpec& s) { s.dim = {5, 4, 3, 2, 1, 3, 1, 1}; },
     "it has 5 dimensions, only three and time are understood. Split it into images of three or four "
     "dimensions."},
    {"HugeGrid", [](NiftiSpec& s) { s.dim = {4, 32767, 32767, 32767, 32767, 1, 1, 1}; },
     std::string("its header describes more data than any file holds") + kCheck},
    {"LargeVolume", [](NiftiSpec& s) { s.dim = {3, 32767, 32767, 3, 1, 1, 1, 1}; },
     std::string("its volumes have more than 2^31 - 1 voxels") + kCheck},
    {"BitsThatDisagree", [](NiftiSpec& s) { s.bitsPerValue = 16; },
     std::string("its header gives 16 bits for a value of type float32") + kCheck},
    {"Complex", [](NiftiSpec& s) { s.dataType = 32; },
     "it holds complex numbers. Convert it to real numbers, for instance 32-bit floats."},
    {"Colours", [](NiftiSpec& s) { s.dataType = 128; },
     "it holds colours. Convert it to real numbers, for instance 32-bit floats."},
    {"LongDoubles", [](NiftiSpec& s) { s.dataType = 1536; },
     "it holds 128-bit floating-point numbers. Convert it to real numbers, for instance 32-bit floats."},
    {"Bits", [](NiftiSpec& s) { s.dataType = 1; },
     "it holds single bits. Convert it to real numbers, for instance 32-bit floats."},
    {"UnknownType", [](NiftiSpec& s) { s.dataType = 77; },
     "its data type code 77 is unknown. Convert it to real numbers, for instance 32-bit floats."},
    {"DataInsideTheHeader", [](NiftiSpec& s) { s.dataOffset = 100; },
     std::string("its header gives an impossible position of the data") + kCheck},
    {"DataFarAway", [](NiftiSpec& s) { s.dataOffset = 1e9; },
     std::string("its header gives an impossible position of the data") + kCheck},
    {"PairOfFiles", [](NiftiSpec& s) { s.magic = s.version == 1 ? "ni1" : "ni2"; },
     "it is the header of a pair of files (.hdr and .img). Convert the pair to one .nii file."},
    {"NoMagic", [](NiftiSpec& s) { s.magic = "???"; },
     "it is no NIfTI file (its magic text is missing). Convert it to NIfTI."},
};
INSTANTIATE_TEST_SUITE_P(Nifti, HostileHeader, testing::ValuesIn(kCases),
                         [](const auto& given) { return std::string(given.param.name); });

TEST(HostileNifti, SaysThatAnEmptyFileIsNone) {
  EXPECT_EQ(messageFor(std::string()), "it is no NIfTI file. Convert it to NIfTI.");
}

TEST(HostileNifti, SaysThatAForeignFileIsNone) {
  EXPECT_EQ(messageFor("GIF89a and so on"), "it is no NIfTI file. Convert it to NIfTI.");
}

TEST(HostileNifti, NoticesAHeaderCutShort) {
  EXPECT_EQ(messageFor(formats_test::niftiHeader({}).substr(0, 200)),
            std::string("the file ends within its header") + kCheck);
}

TEST(HostileNifti, NoticesAPositionOfDataBeyondTheEnd) {
  NiftiSpec spec;
  spec.dataOffset = 100000;
  EXPECT_EQ(messageFor(spec), "the file ends before its last value. Get the file again from its source.");
}

TEST(HostileNifti, NoticesMissingDataBeforeAllocatingThem) {
  NiftiSpec spec;
  spec.dim = {4, 1000, 1000, 500, 100, 1, 1, 1};
  const std::string expected =
      "the file is too short for the 1000 x 1000 x 500 x 100 values of type float32 that its header "
      "describes. "
      "Get the file again from its source.";
  EXPECT_EQ(messageFor(spec), expected);
  EXPECT_EQ(messageFor(gzipped(formats_test::niftiHeader(spec))), expected);
}

TEST(HostileNifti, NoticesCompressedDataThatEndEarly) {
  const std::string whole = gzipped(formats_test::niftiHeader({}) + std::string(96, 'x'));
  EXPECT_EQ(messageFor(whole.substr(0, whole.size() - 12)),
            "the compressed data end too early. Get the file again from its source.");
}

TEST(HostileNifti, NoticesTooFewCompressedValues) {
  EXPECT_EQ(messageFor(gzipped(formats_test::niftiHeader({}) + std::string(90, 'x'))),
            "the file ends before its last value. Get the file again from its source.");
}

TEST(HostileNifti, NoticesAWrongChecksum) {
  std::string whole = gzipped(formats_test::niftiHeader({}) + std::string(96, 'x'));
  whole[whole.size() - 6] = static_cast<char>(whole[whole.size() - 6] ^ 0x55);
  EXPECT_EQ(messageFor(whole), "the compressed data are damaged. Get the file again from its source.");
}

TEST(HostileNifti, SaysThatAFileIsMissingOrAFolder) {
  const Scratch folder;
  EXPECT_EQ(reasonOf([&] { (void)formats::readImage(folder.file("none.nii")); }),
            "cannot open the file (No such file or directory). Check the path and its permissions.");
  EXPECT_EQ(reasonOf([&] { (void)formats::readImage(folder.path()); }),
            "this is a folder, not a file. Name a file in it.");
}

}  // namespace
