// Two references that one worker computes, against a run of the engine that is put together here.
#include "study/reference_job.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "formats/nifti.h"
#include "prepare/prepare.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "study/engine_request.h"
#include "tav/tav.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"
#include "tests/support/typed_condition.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// What the engine told of every reference, condition and kind of map.
class Notes : public tav::RunObserver {
 public:
  void onCondition(const tav::ConditionOutcome& outcome) override {
    for (const tav::MapOutcome& map : outcome.maps)
      thresholds[{outcome.voi->name, outcome.cond->name, map.type}] = map.thresholds;
  }
  std::map<std::tuple<std::string, std::string, tav::MapType>, std::vector<tav::MapThreshold>> thresholds;
};

class ReferenceJob : public ::testing::Test {
 protected:
  ReferenceJob() {
    small_study::writeTo(scratch_.folder());
    request_.title = "r.toml";
    request_.output = {scratch_.folder() / "out", scratch_.folder() / "work", "p"};
    request_.settings.surrogates = 40;
    request_.settings.nullDraws = 3;
    addRun();
    ReferenceRequest& reference = request_.references.emplace_back();
    reference.kind = ReferenceKind::kLabels;
    reference.image = scratch_.folder() / "dseg.nii.gz";
    reference.labels = {"A", "B"};
    request_.conditions = {typedCondition("first", {1, 80}), typedCondition("second", {81, 160})};
  }
  // A confound that is half of what every voxel holds, and volumes that moved.
  void addRun() {
    std::string table = "csf\tframewise_displacement\n";
    for (int v = 0; v < small_study::kVolumes; ++v)
      table += std::to_string(v * v % 13) + (v % 20 == 7 ? "\t0.9\n" : "\t0.1\n");
    RunRequest& run = request_.runs.emplace_back();
    run.name = "run1";
    run.bold = scratch_.folder() / "bold1.nii.gz";
    run.mask = scratch_.folder() / "mask.nii.gz";
    run.confounds = scratch_.write("confounds.tsv", table);
    run.confoundTerms = {"csf"};
    run.censoring.fdThresholdMm = 0.5;
    run.dropVolumes = 3;
  }
  Notes direct(const StudyPlan& plan) const {
    tav::RunOptions options = engineOptions(plan.request.settings);
    options.vtcFolder = plan.workFolder.string();
    options.treatments = courseTreatments(plan.runs);
    options.voiTimeBases = {seedOf(plan, 0), seedOf(plan, 1)};
    Notes notes;
    std::ostringstream errors;
    const tav::TAV_Pars pars = engineRequest(plan.request.settings, plan.order, plan.runs, plan.conditions,
                                             {&plan.regions[0], &plan.regions[1]}, "direct");
    EXPECT_EQ(tav::Computer(options, &notes).computeTAVs(pars, errors), tav::kSuccess) << errors.str();
    return notes;
  }
  static Record recordOf(const StudyPlan& plan, std::size_t region) {
    const OutputNames names(plan.request.output.prefix, plan.regionLabels[region]);
    return readRecordFile((plan.request.output.folder / names.record()).string());
  }
  StudyPlan prepared() const {
    StudyPlan plan = planStudy(request_, 7, "1");
    fs::create_directories(plan.workFolder);
    prepareRun(plan.runs[0], plan.workFolder, plan.request.settings.inclusionThreshold, [](double) {});
    return plan;
  }

  Scratch scratch_;
  Request request_;
};

TEST_F(ReferenceJob, RecordsHaveWhatTheEngineFinds) {
  const StudyPlan plan = prepared();
  computeReferences(plan, {0, 1}, [](double) {});
  const Notes notes = direct(plan);
  std::size_t compared = 0;
  for (const std::size_t region : {0U, 1U}) {
    const Record record = recordOf(plan, region);
    EXPECT_EQ(record.reference, plan.regions[region].name);
    EXPECT_EQ(record.model.seedOfReference, seedOf(plan, region));
    ASSERT_EQ(record.conditions.size(), 2U);
    for (const ConditionRecord& condition : record.conditions) {
      for (const MapResult& map : condition.maps) {
        const auto& found = notes.thresholds.at({record.reference, condition.name, map.type});
        ASSERT_EQ(found.size(), map.thresholds.size());
        for (std::size_t q = 0; q < found.size(); ++q, ++compared)
          EXPECT_EQ(map.thresholds[q].voxelsPassing, found[q].nrPassing);
      }
    }
  }
  EXPECT_GT(compared, 20U);
}

TEST_F(ReferenceJob, EveryReferenceHasItsOwnPlaceAndEveryConditionItsOwnFiles) {
  const StudyPlan plan = prepared();
  computeReferences(plan, {0, 1}, [](double) {});
  for (const std::size_t region : {0U, 1U}) {
    const Record record = recordOf(plan, region);
    EXPECT_NE(record.conditions[0].maps[0].file, record.conditions[1].maps[0].file);
    for (const ConditionRecord& condition : record.conditions) {
      const auto status =
          formats::readLabelImage((plan.request.output.folder / condition.statusFile).string());
      std::size_t inside = 0;
      for (std::size_t i = 0; i + 2 < plan.regions[region].coordinates.size(); i += 3) {
        const auto* const at = &plan.regions[region].coordinates[i];
        const std::int32_t code = status.labels[plan.runs[0].grid.size.index({at[0], at[1], at[2]})];
        inside += code == static_cast<std::int32_t>(StatusCode::kInsideReference) ? 1U : 0U;
      }
      EXPECT_EQ(inside, static_cast<std::size_t>(small_study::regionVoxels()));
    }
  }
}

TEST_F(ReferenceJob, ProgressGoesFromNothingToAll) {
  const StudyPlan plan = prepared();
  std::vector<double> shares;
  computeReferences(plan, {0, 1}, [&](double share) { shares.push_back(share); });
  ASSERT_GT(shares.size(), 4U);
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
  EXPECT_GE(shares.front(), 0);
  EXPECT_LT(shares.front(), 0.2);
  EXPECT_EQ(shares.back(), 1);
}

TEST_F(ReferenceJob, AnotherKeyOrAMissingFileIsNotFinished) {
  StudyPlan plan = prepared();
  computeReferences(plan, {0, 1}, [](double) {});
  EXPECT_TRUE(finishedRecord(plan, 0));
  plan.seed = 8;
  EXPECT_FALSE(finishedRecord(plan, 0));
  plan.seed = 7;
  const fs::path map = plan.request.output.folder / recordOf(plan, 0).conditions[1].maps[0].file;
  fs::resize_file(map, fs::file_size(map) - 1);
  EXPECT_FALSE(finishedRecord(plan, 0));
  EXPECT_TRUE(finishedRecord(plan, 1));
  const fs::path status = plan.request.output.folder / recordOf(plan, 1).conditions[0].statusFile;
  fs::remove(status);
  EXPECT_FALSE(finishedRecord(plan, 1));
}

}  // namespace
}  // namespace study
