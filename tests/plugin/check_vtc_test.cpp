#include <filesystem>
#include <functional>

#include "tests/plugin/plugin_test_case.h"

namespace {

class CheckVtc : public PluginTestCase {
 protected:
  bool check(const fakes::VtcSpec& spec, const std::string& name = "run.vtc") {
    return plugin.checkVTC(pars, headerOnlyVtc(name, spec));
  }

  // How many of this process's open files are `path`.
  static int openings(const std::string& path) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code closedMeanwhile;
      if (std::filesystem::read_symlink(entry.path(), closedMeanwhile) == path) ++count;
    }
    return count;
  }
};

TEST_F(CheckVtc, TheFirstFileFixesTheGeometry) {
  EXPECT_TRUE(check({}));
  EXPECT_EQ(pars.vtcXStart, 57);
  EXPECT_EQ(pars.vtcXEnd, 66);
  EXPECT_EQ(pars.vtcYStart, 52);
  EXPECT_EQ(pars.vtcYEnd, 61);
  EXPECT_EQ(pars.vtcZStart, 59);
  EXPECT_EQ(pars.vtcZEnd, 68);
  EXPECT_EQ(pars.vtcResolution, 3);
  EXPECT_EQ(pars.vtcMaxNrOfVolumes, 10);
}

TEST_F(CheckVtc, EveryFieldOfTheGeometryMustAgree) {
  ASSERT_TRUE(check({}));
  const std::vector<std::function<void(fakes::VtcSpec&)>> changes = {
      [](fakes::VtcSpec& s) { s.xStart -= 3; },   [](fakes::VtcSpec& s) { s.xEnd += 3; },
      [](fakes::VtcSpec& s) { s.yStart -= 3; },   [](fakes::VtcSpec& s) { s.yEnd += 3; },
      [](fakes::VtcSpec& s) { s.zStart -= 3; },   [](fakes::VtcSpec& s) { s.zEnd += 3; },
      [](fakes::VtcSpec& s) { s.resolution = 1; }};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    fakes::VtcSpec spec;
    changes[i](spec);
    EXPECT_FALSE(check(spec)) << i;
  }
  EXPECT_TRUE(check({}));
}

TEST_F(CheckVtc, FieldsTakenBeforeADifferenceStay) {
  pars.vtcYStart = 1;
  EXPECT_FALSE(check({}));
  EXPECT_EQ(pars.vtcXStart, 57);
  EXPECT_EQ(pars.vtcXEnd, 66);
  EXPECT_EQ(pars.vtcYStart, 1);
  EXPECT_EQ(pars.vtcYEnd, -1);
  EXPECT_EQ(pars.vtcMaxNrOfVolumes, -1);
}

TEST_F(CheckVtc, RemembersTheLargestNumberOfVolumes) {
  fakes::VtcSpec spec;
  for (const auto& [volumes, largest] : {std::pair{10, 10}, {25, 25}, {5, 25}}) {
    spec.nrOfVolumes = static_cast<std::int16_t>(volumes);
    EXPECT_TRUE(check(spec));
    EXPECT_EQ(pars.vtcMaxNrOfVolumes, largest);
  }
}

TEST_F(CheckVtc, DoesNotCompareTheReferenceSpace) {
  ASSERT_TRUE(check({}));
  fakes::VtcSpec spec;
  spec.code2 = 1;
  EXPECT_TRUE(check(spec));
}

TEST_F(CheckVtc, AFileThatCannotBeReadTouchesNothing) {
  EXPECT_FALSE(plugin.checkVTC(pars, folder.file("missing.vtc")));
  EXPECT_FALSE(plugin.checkVTC(pars, folder.path()));
  folder.write("empty.vtc", "");
  EXPECT_FALSE(plugin.checkVTC(pars, folder.file("empty.vtc")));
  EXPECT_EQ(pars.vtcXStart, -1);
}

TEST_F(CheckVtc, ARefusedHeaderLeavesItsFileOpen) {
  fakes::VtcSpec spec;
  spec.version = 1;
  EXPECT_FALSE(check(spec, "old.vtc"));
  EXPECT_EQ(openings(folder.file("old.vtc")), 1);
}

TEST_F(CheckVtc, AReadHeaderClosesItsFile) {
  fakes::VtcSpec other;
  other.resolution = 1;
  EXPECT_TRUE(check({}, "good.vtc"));
  EXPECT_FALSE(check(other, "other.vtc"));
  EXPECT_EQ(openings(folder.file("good.vtc")), 0);
  EXPECT_EQ(openings(folder.file("other.vtc")), 0);
}

TEST_F(CheckVtc, GeometryWithoutDataIsRefusedAndTouchesNothing) {
  const std::vector<std::function<void(fakes::VtcSpec&)>> faults = {
      [](fakes::VtcSpec& s) { s.resolution = 0; },           [](fakes::VtcSpec& s) { s.resolution = -3; },
      [](fakes::VtcSpec& s) { s.nrOfVolumes = 0; },          [](fakes::VtcSpec& s) { s.nrOfVolumes = -1; },
      [](fakes::VtcSpec& s) { s.xEnd = s.xStart; },          [](fakes::VtcSpec& s) { s.yEnd = s.yStart; },
      [](fakes::VtcSpec& s) { std::swap(s.zStart, s.zEnd); }};
  for (std::size_t i = 0; i < faults.size(); ++i) {
    fakes::VtcSpec spec;
    faults[i](spec);
    EXPECT_FALSE(check(spec)) << i;
    EXPECT_EQ(pars.vtcXStart, -1) << i;
  }
}

}  // namespace
