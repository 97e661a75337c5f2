// Files that end too early, read together in pieces of a slice.
#include "tests/support/scratch.h"
#include "tests/tav/run_fixture.h"

using ::testing::HasSubstr;

namespace {

class TruncatedFiles : public RunTest {
 protected:
  // What the first condition's voxel loop says.
  std::string messageFor(tav::TAV_Pars pars) {
    std::ostringstream log, said;
    tav::Computer computer;
    EXPECT_EQ(computer.Init(pars, said), tav::kSuccess);
    EXPECT_EQ(computer.simSurrogateVOITCs(pars, log, said), tav::kSuccess);
    EXPECT_EQ(computer.compVOIConditionTAVs(pars.vois[0], pars.conds[0], pars, log, said),
              tav::kTerminalError);
    return said.str();
  }
};

// A slice of 3600 courses of 800 bytes is read in two pieces; the second file ends in the first of them.
TEST_F(TruncatedFiles, OfTwoTruncatedFilesTheFirstInItsOrderIsNamed) {
  const fakes::VtcSpec spec = fakes::cellGrid(60, 60, 2, 400);
  tav::TAV_Pars pars = requestOn(spec);
  const auto ramp = [](int x, int, int, int t) { return static_cast<float>(1000 + (x + t * t) % 17); };
  addCondition(pars, "c", writeVtc("a.vtc", spec, ramp), {{1, 400}});
  pars.conds[0].vtcIntvSets.push_back(pars.conds[0].vtcIntvSets[0]);
  for (std::string* name :
       {&pars.conds[0].vtcIntvSets[1].srcVtcName, &pars.conds[0].vtcIntvSets[1].trgVtcName})
    *name = writeVtc("b.vtc", spec, ramp);
  pars.vois[0].nVoxels = 1;  // in the first slice
  constexpr std::size_t kCourse = 800, kVoxels = std::size_t{60} * 60 * 2;
  const auto endAt = [&](const char* name, std::size_t voxel) {
    const std::string whole = contentOf(folder.file(name));
    fakes::writeBytes(folder.file(name), whole.substr(0, whole.size() - (kVoxels - voxel) * kCourse));
  };
  endAt("a.vtc", 3500), endAt("b.vtc", 100);
  EXPECT_THAT(messageFor(pars), HasSubstr("from vtc '" + folder.file("a.vtc") + "'"));
  // In the slice behind, the first file is whole.
  writeVtc("a.vtc", spec, ramp);
  endAt("a.vtc", 3600);
  EXPECT_THAT(messageFor(pars), HasSubstr("from vtc '" + folder.file("b.vtc") + "'"));
}

}  // namespace
