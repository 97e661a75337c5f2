#include "io/tcutils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"

namespace {

// An open VTC whose voxel i has the value 10 * i + t at volume t.
class OpenVtc {
 public:
  explicit OpenVtc(const fakes::VtcSpec& spec, std::size_t missingValues = 0) {
    std::vector<float> values;
    for (std::size_t voxel = 0; voxel < spec.nrOfVoxels(); ++voxel) {
      for (int t = 0; t < spec.nrOfVolumes; ++t)
        values.push_back(static_cast<float>(10 * static_cast<int>(voxel) + t));
    }
    values.resize(values.size() - missingValues);
    open(spec, values);
  }
  OpenVtc(const fakes::VtcSpec& spec, const std::vector<float>& values) { open(spec, values); }
  ~OpenVtc() { std::fclose(file); }

  // The mean course of the voxels, read into row 2 of a larger matrix.
  bool fetch(const std::vector<std::int32_t>& voxels, bool talairach = false) {
    const auto nVoxels = static_cast<std::int32_t>(voxels.size() / 3);
    std::vector<std::int32_t> work(voxels.size());
    ok = getVOITcFromVTC<float, tc_accum_avgW<float>>(file, header, voxels.data(), nVoxels, talairach ? 1 : 0,
                                                      out, 2, work.data(), report);
    return ok;
  }
  [[nodiscard]] std::vector<float> course() const { return {out[2] + 1, out[2] + 1 + header.nrOfVolumes}; }

  std::FILE* file = nullptr;
  VTC_Header header{};
  simo::Matrix<float> out{2, 20, 1, 1, -1.0F};
  VoiTcReport report;
  bool ok = false;

 private:
  void open(const fakes::VtcSpec& spec, const std::vector<float>& values) {
    fakes::writeVtc(folder_.file("v.vtc"), spec, values);
    file = std::fopen(folder_.file("v.vtc").c_str(), "rb");
    EXPECT_TRUE(readVTCHeader(file, header));
  }
  Scratch folder_;
};

std::vector<std::int32_t> cube(std::int32_t centre, std::int32_t radius) {
  std::vector<std::int32_t> voxels;
  for (std::int32_t x = -radius; x <= radius; ++x)
    for (std::int32_t y = -radius; y <= radius; ++y)
      for (std::int32_t z = -radius; z <= radius; ++z)
        voxels.insert(voxels.end(), {centre + x, centre + y, centre + z});
  return voxels;
}

fakes::VtcSpec wideBox(std::int16_t resolution) {
  fakes::VtcSpec spec;
  spec.resolution = resolution;
  spec.xStart = spec.yStart = spec.zStart = 0;
  spec.xEnd = spec.yEnd = spec.zEnd = static_cast<std::int16_t>(4 * resolution);
  spec.nrOfVolumes = 3;
  return spec;
}

}  // namespace

TEST(VoiTimeCourse, TwentySevenVoxelsInOneCellAreThatCell) {
  for (const std::int16_t dataType : {std::int16_t{1}, std::int16_t{2}}) {
    fakes::VtcSpec spec = wideBox(3);
    spec.dataType = dataType;
    OpenVtc vtc(spec);
    ASSERT_TRUE(vtc.fetch(cube(3, 1)));
    const float voxel = (1 * 4 + 1) * 4 + 1;
    EXPECT_EQ(vtc.course(), (std::vector<float>{10 * voxel, 10 * voxel + 1, 10 * voxel + 2}));
  }
}

TEST(VoiTimeCourse, WeighsCellsByTheirVoxels) {
  OpenVtc vtc(wideBox(2));
  ASSERT_TRUE(vtc.fetch({0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0}));
  EXPECT_EQ(vtc.course(), (std::vector<float>{2.5F, 3.5F, 4.5F})) << "three voxels in cell 0, one in cell 1";
  EXPECT_EQ(vtc.out[1][1], -1.0F) << "other rows stay";
  EXPECT_EQ(vtc.out[2][4], -1.0F) << "columns beyond the volumes stay";
}

TEST(VoiTimeCourse, TalairachOriginIsAt128) {
  fakes::VtcSpec spec = wideBox(1);
  spec.xStart = spec.yStart = spec.zStart = 127;
  spec.xEnd = spec.yEnd = spec.zEnd = 131;
  OpenVtc vtc(spec);
  ASSERT_TRUE(vtc.fetch({0, 0, 0}, true));
  const float voxel = (1 * 4 + 1) * 4 + 1;
  EXPECT_EQ(vtc.course()[0], 10 * voxel);
}

TEST(VoiTimeCourse, SixteenBitDataAreUnsigned) {
  fakes::VtcSpec spec = fakes::cellGrid(1, 1, 1, 2);
  OpenVtc vtc(spec, std::vector<float>{65535.0F, 1.0F});
  ASSERT_TRUE(vtc.fetch({0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(vtc.course(), (std::vector<float>{65535.0F, 1.0F}));
}

TEST(VoiTimeCourse, NoVoxelsGiveNaN) {
  OpenVtc vtc(wideBox(1));
  EXPECT_TRUE(vtc.fetch({}));
  for (const float value : vtc.course()) EXPECT_TRUE(std::isnan(value));
}

TEST(VoiTimeCourse, LeavesTheStreamAtTheData) {
  OpenVtc vtc(wideBox(1));
  ASSERT_TRUE(vtc.fetch({3, 3, 3}));
  EXPECT_EQ(std::ftell(vtc.file), vtc.header.dataOffset);
}

TEST(VoiTimeCourse, LeavesOutVoxelsOutsideTheBox) {
  OpenVtc vtc(wideBox(1));
  ASSERT_TRUE(vtc.fetch({1, 0, 0, -1, 0, 0, 0, 4, 0, 3, 0, 0}));
  EXPECT_EQ(vtc.report.nrOutside, 2);
  EXPECT_EQ(vtc.course(), (std::vector<float>{20.0F, 21.0F, 22.0F})) << "divided by the two voxels inside";
}

TEST(VoiTimeCourse, FailsWhenAllVoxelsAreOutside) {
  OpenVtc vtc(wideBox(1));
  EXPECT_FALSE(vtc.fetch({-1, 0, 0, 9, 9, 9}));
  EXPECT_TRUE(vtc.report.allOutside);
  EXPECT_FALSE(vtc.report.truncated);
}

TEST(VoiTimeCourse, FailsWhenTheFileEndsInsideIt) {
  OpenVtc vtc(wideBox(1), 1);
  EXPECT_FALSE(vtc.fetch({3, 3, 3}));
  EXPECT_TRUE(vtc.report.truncated);
  EXPECT_TRUE(vtc.fetch({2, 3, 3})) << "the voxel before is whole";
}

TEST(VoiTimeCourse, TheFormWithoutReportGivesTheSame) {
  OpenVtc vtc(wideBox(1));
  const std::int32_t voxels[] = {1, 2, 3};
  std::int32_t work[3];
  ASSERT_TRUE(
      (getVOITcFromVTC<float, tc_accum_avgW<float>>(vtc.file, vtc.header, voxels, 1, 0, vtc.out, 2, work)));
  EXPECT_EQ(vtc.course()[0], 10.0F * ((3 * 4 + 2) * 4 + 1));
}
