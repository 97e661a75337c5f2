#include "io/cnvtcfile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"

namespace {

// A header read back from bytes.
struct ReadHeader {
  explicit ReadHeader(const std::string& bytes) {
    folder.write("h.vtc", bytes);
    std::FILE* const file = std::fopen(folder.file("h.vtc").c_str(), "rb");
    std::memset(&header, 0x5A, sizeof header);  // what the reader leaves alone must not matter
    ok = readVTCHeader(file, header);
    position = std::ftell(file);
    std::fclose(file);
  }
  explicit ReadHeader(const fakes::VtcSpec& spec) : ReadHeader(fakes::vtcHeaderBytes(spec) + "data follow") {}

  Scratch folder;
  VTC_Header header;
  bool ok;
  long position;
};

VTC_Header usableHeader() {
  return ReadHeader(fakes::VtcSpec{}).header;
}

}  // namespace

TEST(VtcHeader, ReadsEveryFieldOfVersion3) {
  fakes::VtcSpec spec;
  spec.dataType = 2;
  spec.nrOfVolumes = 252;
  spec.xStart = -5;
  const ReadHeader read(spec);
  ASSERT_TRUE(read.ok);
  EXPECT_STREQ(read.header.sourceFileName, "run.fmr");
  EXPECT_EQ(read.header.nrOfLinkedProtocols, 1);
  EXPECT_STREQ(read.header.protocolName, "run.prt");
  EXPECT_EQ(read.header.dataType, kVtcFloatData);
  EXPECT_EQ(read.header.nrOfVolumes, 252);
  EXPECT_EQ(read.header.resolution, 3);
  EXPECT_EQ(read.header.xStart, -5) << "two-byte fields are signed";
  EXPECT_EQ(read.header.xEnd, 66);
  EXPECT_EQ(read.header.yStart, 52);
  EXPECT_EQ(read.header.yEnd, 61);
  EXPECT_EQ(read.header.zStart, 59);
  EXPECT_EQ(read.header.zEnd, 68);
  EXPECT_EQ(read.header.unused1, 0);
}

TEST(VtcHeader, Version2HoldsSixteenBitData) {
  fakes::VtcSpec spec;
  spec.version = 2;
  const ReadHeader read(spec);
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.header.dataType, 1);
  EXPECT_EQ(read.header.nrOfVolumes, 10);
}

TEST(VtcHeader, RejectsVersion1WithoutReadingFurther) {
  fakes::VtcSpec spec;
  spec.version = 1;
  const ReadHeader read(spec);
  EXPECT_FALSE(read.ok);
  EXPECT_EQ(read.position, 2);
}

TEST(VtcHeader, RejectsTwoLinkedProtocols) {
  fakes::VtcSpec spec;
  spec.nrOfLinkedProtocols = 2;
  EXPECT_FALSE(ReadHeader(spec).ok);
}

TEST(VtcHeader, RoundsTheRepetitionTimeHalfUp) {
  const auto trOf = [](float tr) {
    fakes::VtcSpec spec;
    spec.tr = tr;
    return ReadHeader(spec).header.tr;
  };
  EXPECT_EQ(trOf(2000.0F), 2000);
  EXPECT_EQ(trOf(1999.5F), 2000);
  EXPECT_EQ(trOf(1999.4F), 1999);
}

TEST(VtcHeader, RepetitionTimesBeyond32BitsBecome0) {
  for (const float tr : {3.0e9F, -3.0e9F, HUGE_VALF, NAN}) {
    fakes::VtcSpec spec;
    spec.tr = tr;
    EXPECT_EQ(ReadHeader(spec).header.tr, 0) << tr;
  }
}

TEST(VtcHeader, LeavesTheStreamAtTheFirstDataValue) {
  fakes::VtcSpec spec;
  spec.sourceName = "abc";
  spec.protocolName = "de";
  const ReadHeader version3(spec);
  EXPECT_EQ(version3.position, 2 + (3 + 1) + 2 + (2 + 1) + 2 + 2 + 2 + 2 + 12 + 2 + 4);
  EXPECT_EQ(version3.header.dataOffset, version3.position);
  spec.version = 2;
  const ReadHeader version2(spec);
  EXPECT_EQ(version2.position, 2 + (3 + 1) + (2 + 1) + 2 + 2 + 12 + 2 + 4 + 12);
  EXPECT_EQ(version2.header.dataOffset, version2.position);
}

TEST(VtcHeader, KeepsTheSecondOfTheTwoCodes) {
  fakes::VtcSpec spec;
  spec.code1 = 1;
  spec.code2 = 3;
  EXPECT_EQ(ReadHeader(spec).header.spaceCode, 3);
  spec.code2 = 255;
  EXPECT_EQ(ReadHeader(spec).header.spaceCode, 255) << "zero-extended";
}

TEST(VtcHeader, CutsNamesLongerThan260Characters) {
  fakes::VtcSpec spec;
  spec.sourceName = std::string(5000, 's');
  spec.protocolName = std::string(260, 'p');
  const ReadHeader read(spec);
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(std::string(read.header.sourceFileName), std::string(260, 's'));
  EXPECT_EQ(std::string(read.header.protocolName), std::string(260, 'p'));
  EXPECT_EQ(read.header.nrOfVolumes, 10) << "the fields behind a long name are found";
}

TEST(VtcHeader, RejectsAFileThatEndsAnywhereInsideTheHeader) {
  for (const std::int16_t version : {std::int16_t{2}, std::int16_t{3}}) {
    fakes::VtcSpec spec;
    spec.version = version;
    const std::string bytes = fakes::vtcHeaderBytes(spec);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_FALSE(ReadHeader(bytes.substr(0, length)).ok) << length << " of " << bytes.size();
    }
    EXPECT_TRUE(ReadHeader(bytes).ok);
  }
}

TEST(VtcHeader, RejectsANameThatNeverEnds) {
  EXPECT_FALSE(ReadHeader(std::string("\x03\x00", 2) + std::string(100000, 'x')).ok);
}

TEST(VtcGeometry, OfAnOrdinaryHeaderIsUsable) {
  const VTC_Header header = usableHeader();
  EXPECT_TRUE(hasUsableGeometry(header));
  EXPECT_EQ(gridOf(header), (io::GridSize{3, 3, 3}));
  EXPECT_EQ(sliceValues(header), 90);
}

TEST(VtcGeometry, NeedsAResolutionVolumesAndABox) {
  const auto usableWith = [](std::int32_t VTC_Header::*field, std::int32_t value) {
    VTC_Header header = usableHeader();
    header.*field = value;
    return hasUsableGeometry(header);
  };
  EXPECT_FALSE(usableWith(&VTC_Header::resolution, 0));
  EXPECT_FALSE(usableWith(&VTC_Header::resolution, -3));
  EXPECT_FALSE(usableWith(&VTC_Header::nrOfVolumes, 0));
  EXPECT_FALSE(usableWith(&VTC_Header::nrOfVolumes, -1));
  EXPECT_FALSE(usableWith(&VTC_Header::xEnd, 57)) << "empty box";
  EXPECT_FALSE(usableWith(&VTC_Header::yEnd, 10)) << "inverted box";
  EXPECT_FALSE(usableWith(&VTC_Header::zEnd, 61)) << "smaller than one voxel";
  EXPECT_TRUE(usableWith(&VTC_Header::zEnd, 62));
}

TEST(VtcGeometry, RefusesGridsAndSlicesBeyond31Bits) {
  VTC_Header header = usableHeader();
  header.resolution = 1;
  header.xStart = header.yStart = header.zStart = -32768;
  header.xEnd = header.yEnd = 32767;
  header.zEnd = -32767;
  EXPECT_FALSE(hasUsableGeometry(header));
  header.xEnd = header.yEnd = -32768 + 1000;
  header.zEnd = -32768 + 2000;
  header.nrOfVolumes = 1000;
  EXPECT_TRUE(hasUsableGeometry(header));
  header.nrOfVolumes = 32767;
  EXPECT_FALSE(hasUsableGeometry(header));
}
