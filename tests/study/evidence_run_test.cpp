// What stands behind the maps of whole runs, held against the maps, the records and the data.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "formats/nifti.h"
#include "results/evidence_json.h"
#include "results/record_json.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::size_t sumOf(const std::vector<std::size_t>& counts) {
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

class EvidenceRun : public SmallStudyRun {
 protected:
  study::Record record(const std::string& reference = "A") const {
    return study::readRecordFile((results() / ("small_seed-" + reference + "_tavmap.json")).string());
  }
  study::Evidence evidence(const study::ConditionRecord& condition) const {
    return study::readEvidenceFile((results() / condition.evidenceFile).string());
  }
  // Jumps of every voxel at these volumes, counted from 1.
  void plantSpikes(const std::vector<std::size_t>& volumes) {
    const fs::path file = folder() / "bold1.nii.gz";
    Series bold = readSeries(file);
    const std::size_t voxels = bold.header.size.voxels();
    for (const std::size_t volume : volumes) {
      for (std::size_t i = 0; i < voxels; ++i) bold.values[(volume - 1) * voxels + i] += 400;
    }
    writeSeries(file, bold);
  }
  // A request with one run and region A; `ofRun`: further lines of the run.
  fs::path oneRun(const std::string& ofRun, const std::string& settings = "") {
    return scratch_.write(
        "one.toml", "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 120\n" + settings +
                        "\n[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n" + ofRun +
                        "\n[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n");
  }
  study::RunEvidence onlyRun() const { return evidence(record().conditions.at(0)).runs.at(0); }
};

TEST_F(EvidenceRun, HistogramsHoldEveryComputedVoxelAndEveryNullValue) {
  for (const char* method : {"calibrated", "plugin"}) {
    fs::remove_all(results());
    ASSERT_EQ(run(write(std::string("method = '") + method + "'")).exitCode, 0);
    const study::Record made = record();
    for (const study::ConditionRecord& condition : made.conditions) {
      const study::Evidence found = evidence(condition);
      EXPECT_EQ(made.files.count(condition.evidenceFile), 1U);
      EXPECT_EQ(found.condition, condition.name);
      ASSERT_EQ(found.maps.size(), 5U);  // all but the one without thresholds
      const auto draws = static_cast<std::size_t>(std::string(method) == "plugin" ? 1 : 20);
      for (const study::MapEvidence& map : found.maps) {
        const study::MapHistogram& bins = map.histogram;
        EXPECT_EQ(sumOf(bins.observed), condition.voxelsComputed());
        EXPECT_EQ(bins.observedBelow + bins.observedAbove, 0U);
        const std::size_t nulls = sumOf(bins.null) + bins.nullBelow + bins.nullAbove;
        EXPECT_LE(nulls, draws * (condition.voxelsComputed() + 8));  // of the reference's voxels too
        if (map.type != tav::DTAV) continue;
        EXPECT_GT(nulls, draws * condition.voxelsComputed());
      }
    }
  }
}

// The rank, the magnitude and the p that each threshold rests on are in the curve.
TEST_F(EvidenceRun, TheCurveHoldsWhatThresholdsRestOn) {
  ASSERT_EQ(run(write()).exitCode, 0);
  int found = 0;
  const study::Record made = record();
  for (const study::ConditionRecord& condition : made.conditions) {
    const study::Evidence kept = evidence(condition);
    for (std::size_t m = 0; m < kept.maps.size(); ++m) {
      const study::SearchEvidence& search = kept.maps[m].search;
      if (!search.empty()) {
        EXPECT_EQ(search.fdrConstant, made.model.settings.fdrConstant);
      }
      const auto isWithin = [&](std::size_t i, double q) {
        return search.p[i] <= static_cast<double>(search.ranks[i]) / static_cast<double>(search.voxels) * q /
                                  search.fdrConstant;
      };
      for (const study::ThresholdResult& level : condition.maps[m].thresholds) {
        std::size_t last = search.ranks.size();
        for (std::size_t i = 0; i < search.ranks.size(); ++i)
          if (isWithin(i, level.q)) last = i;
        ASSERT_EQ(last<search.ranks.size(), level.voxelsPassing> 0);
        if (level.voxelsPassing == 0) continue;
        EXPECT_EQ(search.ranks[last], level.voxelsPassing);
        EXPECT_EQ(search.magnitudes[last], *level.threshold);
        ++found;
      }
    }
  }
  EXPECT_GT(found, 3);
}

TEST_F(EvidenceRun, WithMethodPluginThereIsNoCurve) {
  ASSERT_EQ(run(write("method = 'plugin'")).exitCode, 0);
  const study::Evidence found = evidence(record().conditions.at(0));
  for (const study::MapEvidence& map : found.maps) EXPECT_TRUE(map.search.empty());
  ASSERT_EQ(found.runs.size(), 2U);
  for (const study::RunEvidence& one : found.runs) {
    EXPECT_EQ(one.spectrum.surrogates, 60U);
    EXPECT_FALSE(one.residuals.empty());
    EXPECT_FALSE(one.predictability.empty());
  }
}

TEST_F(EvidenceRun, SlicesAddUpToTheStatusMap) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const study::ConditionRecord condition = record().conditions.at(0);
  const study::Evidence found = evidence(condition);
  const formats::LabelImage status = formats::readLabelImage((results() / condition.statusFile).string());
  const auto perSlice = static_cast<std::size_t>(small_study::kDims[0] * small_study::kDims[1]);
  for (std::size_t code = 0; code < study::kStatusCodes; ++code) {
    ASSERT_EQ(found.voxelsBySlice[code].size(), static_cast<std::size_t>(small_study::kDims[2]));
    EXPECT_EQ(sumOf(found.voxelsBySlice[code]), condition.voxels[code]);
    for (std::size_t k = 0; k < found.voxelsBySlice[code].size(); ++k) {
      const auto first = status.labels.begin() + static_cast<std::ptrdiff_t>(k * perSlice);
      EXPECT_EQ(static_cast<std::size_t>(std::count(first, first + static_cast<std::ptrdiff_t>(perSlice),
                                                    static_cast<std::int32_t>(code))),
                found.voxelsBySlice[code][k]);
    }
  }
}

TEST_F(EvidenceRun, VolumesAreThoseOfTheStoredImage) {
  plantSpikes({25, 105});
  ASSERT_EQ(run(oneRun("drop_volumes = 3")).exitCode, 0);
  const study::RunEvidence found = onlyRun();
  EXPECT_EQ(found.run, "run1");
  EXPECT_EQ(found.referenceFromRun, "");
  EXPECT_EQ(found.repetitionTime, 2);
  EXPECT_EQ(found.volumes, small_study::kVolumes);
  EXPECT_EQ(found.droppedVolumes, 3);
  EXPECT_THAT(found.spikes, ElementsAre(25, 105));
  EXPECT_THAT(found.censoredVolumes, IsEmpty());
  EXPECT_EQ(found.spectrum.interval.first, 4);
  EXPECT_EQ(found.spectrum.interval.last, small_study::kVolumes);
  EXPECT_EQ(found.spectrum.surrogates, 100U);  // of 120
  EXPECT_TRUE(found.motion.empty());
  const std::vector<std::string> warnings = record().warnings;
  EXPECT_THAT(warnings, ::testing::Contains(HasSubstr("jump at once at 2 volumes (25, 105)")));
}

TEST_F(EvidenceRun, ResidualsAreThoseOfTheMapsOwnOrder) {
  ASSERT_EQ(run(oneRun("", "order = 2")).exitCode, 0);
  const study::ResidualEvidence found = onlyRun().residuals;
  EXPECT_EQ(found.residuals, static_cast<std::size_t>(small_study::kVolumes - 2));
  EXPECT_EQ(found.correlations.size(), 20U);
  EXPECT_NEAR(found.bound, 1.96 / std::sqrt(158.0), 1e-12);
  EXPECT_EQ(found.degreesOfFreedom, 20);
  ASSERT_TRUE(found.p && found.ljungBox);
  EXPECT_GT(*found.p, 0);
  EXPECT_LT(*found.p, 1);
}

// Rotations of 0.01 rad on a sphere of 50 mm, translations as they are.
TEST_F(EvidenceRun, MotionComesFromTheTableOfConfounds) {
  std::string table = "trans_x\ttrans_y\ttrans_z\trot_x\trot_y\trot_z\n", own = "framewise_displacement\n";
  for (int v = 1; v <= small_study::kVolumes; ++v) {
    table += v < 30 ? "0\t0\t0\t0\t0\t0\n" : "0.1\t0\t-0.2\t0.01\t0\t0\n";
    own += v == 1 ? "n/a\n" : v == 50 ? "1.25\n" : "0.125\n";
  }
  scratch_.write("six.tsv", table);
  scratch_.write("own.tsv", own);
  ASSERT_EQ(run(oneRun("drop_volumes = 2\nfd_threshold = 0.5\nconfounds = 'six.tsv'")).exitCode, 0);
  const study::RunEvidence six = onlyRun();
  ASSERT_EQ(six.motion.displacement.size(), static_cast<std::size_t>(small_study::kVolumes));
  EXPECT_TRUE(std::isnan(six.motion.displacement[0]));
  EXPECT_EQ(six.motion.displacement[28], 0);
  EXPECT_THAT(six.motion.displacement[29], DoubleNear(0.1 + 0.2 + 0.01 * 50, 1e-9));
  EXPECT_THAT(six.motion.source, HasSubstr("trans_x ... rot_z"));
  EXPECT_THAT(six.censoredVolumes, ElementsAre(30));
  ASSERT_EQ(run(oneRun("confounds = 'own.tsv'"), {"--force"}).exitCode, 0);
  const study::RunEvidence column = onlyRun();
  EXPECT_EQ(column.motion.displacement[49], 1.25);
  EXPECT_THAT(column.motion.source, HasSubstr("column framewise_displacement"));
  EXPECT_THAT(column.censoredVolumes, IsEmpty());  // nobody asked for it
}

TEST_F(EvidenceRun, ATableWithoutMotionHasNone) {
  std::string table = "csf\n";
  for (int v = 1; v <= small_study::kVolumes; ++v) table += std::to_string(v % 7) + "\n";
  scratch_.write("csf.tsv", table);
  ASSERT_EQ(run(oneRun("confounds = 'csf.tsv'\nregress = ['csf']")).exitCode, 0);
  EXPECT_TRUE(onlyRun().motion.empty());
}

TEST_F(EvidenceRun, PairsNameBothRuns) {
  const fs::path request =
      write("", "[[condition]]\nname = 'pair'\npairs = [['run1', 'run2']]\nwhole_run = true\n");
  ASSERT_EQ(run(request).exitCode, 0);
  const study::RunEvidence pair = evidence(record().conditions.at(2)).runs.at(0);
  EXPECT_EQ(pair.run, "run2");
  EXPECT_EQ(pair.referenceFromRun, "run1");
  // The course is that of run1, and so is its spectrum.
  const study::Evidence whole = evidence(record().conditions.at(0));
  EXPECT_EQ(pair.spectrum, whole.runs.at(0).spectrum);
  EXPECT_FALSE(pair.spectrum == whole.runs.at(1).spectrum);
}

}  // namespace
