// References that go through the voxels together: every one has the results that it has alone.
#include "tav/voxel_passes.h"

#include "tav/kernel/dispatch.h"
#include "tests/tav/run_fixture.h"

namespace {

constexpr int kVois = 11;  // more than go through the voxels together

// Everything that a reference and condition leave, as bits.
using Results = std::vector<std::vector<std::uint32_t>>;

class VoxelPasses : public RunTest, public ::testing::WithParamInterface<int> {
 protected:
  VoxelPasses() : pars(requestOn(spec)) {
    addCondition(pars, "rest", writeNoise("a.vtc", spec, 3), {{1, 60}});
    addCondition(pars, "task", writeNoise("b.vtc", spec, 4), {{1, 25}, {31, 60}});
    for (std::int32_t i = 0; i < kVois; ++i) voxels_.push_back({i % 3, i / 3, i % 2});
    pars.vois.clear();
    for (std::int32_t i = 0; i < kVois; ++i) {
      tav::TAV_VOI_Pars& voi = pars.vois.emplace_back();
      voi.name = "voi" + std::to_string(i);
      voi.nVoxels = 1;
      voi.voxels = voxels_[static_cast<std::size_t>(i)].data();
    }
    options.nullDraws = GetParam();
  }

  enum class Ask : std::uint8_t { kByRequest, kByCopies };

  // Asked for copies of its references, a run cannot know which one follows.
  // repeated: a reference whose last condition is asked for twice, or -1.
  Results run(Ask ask, int repeated = -1) {
    tav::Computer computer(options);
    std::ostringstream log;
    EXPECT_EQ(computer.Init(pars, errors), tav::kSuccess) << errors.str();
    EXPECT_EQ(computer.simSurrogateVOITCs(pars, log, errors), tav::kSuccess);
    Results results;
    for (const tav::TAV_VOI_Pars& voi : pars.vois) {
      const tav::TAV_VOI_Pars copy = voi;
      const tav::TAV_VOI_Pars& asked = ask == Ask::kByCopies ? copy : voi;
      for (const tav::TAV_Cond_Pars& cond : pars.conds) {
        EXPECT_EQ(computer.compVOIConditionTAVs(asked, cond, pars, log, errors), tav::kSuccess);
        results.push_back(bitsOf(computer));
      }
      if (&voi - pars.vois.data() != repeated) continue;
      EXPECT_EQ(computer.compVOIConditionTAVs(asked, pars.conds.back(), pars, log, errors), tav::kSuccess);
    }
    results.push_back({static_cast<std::uint32_t>(computer.random.next())});
    logs_.push_back(log.str());
    return results;
  }

  static std::vector<std::uint32_t> bitsOf(const tav::Computer& computer) {
    std::vector<std::uint32_t> bits;
    const auto add = [&](const float* values, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) bits.push_back(std::bit_cast<std::uint32_t>(values[i]));
    };
    for (int m = 0; m < tav::kNrOfMeasures; ++m) {
      add(computer.rawMaps1->values(m), computer.rawMaps1->nrOfVoxels());
      add(computer.rawMaps2->values(m), computer.rawMaps2->nrOfVoxels());
      if (computer.raw.furtherNulls == nullptr) continue;
      for (const auto& block : computer.raw.furtherNulls->blocks()) add(block.plane(m), block.planeSize());
    }
    return bits;
  }

  fakes::VtcSpec spec = fakes::cellGrid(3, 4, 2, 60);
  tav::TAV_Pars pars;
  tav::RunOptions options;
  std::vector<std::string> logs_;

 private:
  std::vector<std::array<std::int32_t, 3>> voxels_;
};

std::uint64_t batchesRun() {
  return tav::kernel::batchesRun(tav::kernel::bestKernel().name);
}

}  // namespace

TEST_P(VoxelPasses, OfOneSequenceOfRandomNumbersGiveWhatTheReferencesGiveOneByOne) {
  const auto start = batchesRun();
  const Results together = run(Ask::kByRequest);
  const auto between = batchesRun();
  const Results alone = run(Ask::kByCopies);
  EXPECT_EQ(together, alone);
  EXPECT_EQ(logs_[0], logs_[1]);
  // Several draws take turns in the kernel, whoever shares the pass.
  const bool sharesBatches = GetParam() == 1;
  EXPECT_EQ(between - start < (batchesRun() - between) / 2, sharesBatches);
}

TEST_P(VoxelPasses, NoticeAConditionThatIsAskedForTwice) {
  EXPECT_EQ(run(Ask::kByRequest, 1), run(Ask::kByCopies, 1));
}

TEST_P(VoxelPasses, OfReferencesWithTimeBasesOfTheirOwnGiveWhatEachGivesAlone) {
  options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
  for (int i = 0; i < kVois; ++i) options.voiTimeBases.push_back(1000 + 7 * i);
  Results together = run(Ask::kByRequest);
  together.pop_back();
  const std::vector<tav::TAV_VOI_Pars> vois = pars.vois;
  const std::vector<std::int64_t> bases = options.voiTimeBases;
  Results alone;
  for (std::size_t i = 0; i < vois.size(); ++i) {
    pars.vois = {vois[i]};
    options.voiTimeBases = {bases[i]};
    Results results = run(Ask::kByRequest);
    alone.insert(alone.end(), results.begin(), results.end() - 1);
  }
  EXPECT_EQ(together, alone);
}

TEST_P(VoxelPasses, LeaveNoTimeBaseOfAReferenceBehind) {
  options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
  for (int i = 0; i < kVois; ++i) options.voiTimeBases.push_back(1000 + 7 * i);
  (void)run(Ask::kByRequest);
  simo::setTimeBase(std::nullopt);
  ASSERT_EQ(setenv("TAV_TIME_BASE", "424242", 1), 0);
  (void)run(Ask::kByRequest);
  EXPECT_EQ(simo::timeBase(), 424242);
  unsetenv("TAV_TIME_BASE");
}

TEST_P(VoxelPasses, NeedATimeBaseForEachReferenceOrNone) {
  options.voiTimeBases = {1, 2};
  tav::Computer computer(options);
  EXPECT_EQ(computer.computeTAVs(pars, errors), tav::kInvalidParameters);
  EXPECT_EQ(errors.str(), "The run has 2 time bases for 11 references; it needs one for each, or none");
}

INSTANTIATE_TEST_SUITE_P(Draws, VoxelPasses, ::testing::Values(1, 3));
