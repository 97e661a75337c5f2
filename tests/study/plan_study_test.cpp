// What planStudy() settles beyond its parts.
#include <gtest/gtest.h>

#include "formats/nifti.h"
#include "request/problem.h"
#include "study/study_plan.h"
#include "tests/support/image_series.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace study {
namespace {

namespace fs = std::filesystem;

class PlanStudy : public ::testing::Test {
 protected:
  PlanStudy() {
    small_study::writeTo(scratch_.folder());
    scratch_.write("confounds.tsv", table());
    request_.title = "r.toml";
    request_.output.folder = here("out");
    request_.output.prefix = "p";
    RunRequest& run = request_.runs.emplace_back();
    run.name = "run1";
    run.bold = here("bold1.nii.gz");
    run.mask = here("mask.nii.gz");
    run.events = here("events.tsv");
    run.confounds = here("confounds.tsv");
    ReferenceRequest& reference = request_.references.emplace_back();
    reference.kind = ReferenceKind::kLabels;
    reference.image = here("dseg.nii.gz");
    reference.table = here("dseg.tsv");
    reference.labels = {"A", "B"};
    ConditionRequest& condition = request_.conditions.emplace_back();
    condition.name = "c";
    condition.parts = {{"run1", "run1", {}}};
  }
  // As it is named from where the program runs.
  fs::path here(const std::string& name) const { return fs::relative(scratch_.folder() / name); }
  static std::string table() {
    std::string text = "csf\n";
    for (int v = 0; v < small_study::kVolumes; ++v) text += std::to_string(v % 7) + "\n";
    return text;
  }
  StudyPlan plan() const { return planStudy(request_, 1, "1"); }

  Scratch scratch_;
  Request request_;
};

// Workers run in another folder.
TEST_F(PlanStudy, EveryPathBecomesAbsolute) {
  request_.datasets = {{"raw", here(".")}};
  const Request planned = plan().request;
  const fs::path folder = scratch_.folder();
  EXPECT_EQ(planned.output.folder, folder / "out");
  EXPECT_EQ(planned.output.workFolder, folder / "out/work");
  EXPECT_EQ(planned.runs[0].bold, folder / "bold1.nii.gz");
  EXPECT_EQ(planned.runs[0].mask, folder / "mask.nii.gz");
  EXPECT_EQ(planned.runs[0].events, folder / "events.tsv");
  EXPECT_EQ(planned.runs[0].confounds, folder / "confounds.tsv");
  EXPECT_EQ(planned.references[0].image, folder / "dseg.nii.gz");
  EXPECT_EQ(planned.references[0].table, folder / "dseg.tsv");
  EXPECT_TRUE(planned.datasets.at("raw").is_absolute());
}

TEST_F(PlanStudy, WithoutADataSetTheRunsFolderIsOne) {
  EXPECT_EQ(plan().request.datasets.at("input"), scratch_.folder());
}

// 42 volumes in three intervals leave 39 of them to a model of order 1. With method "calibrated" it is the
// data that are counted.
TEST_F(PlanStudy, FewVolumesAreThoseThatTheModelHas) {
  request_.conditions[0].kind = IntervalKind::kTyped;
  request_.conditions[0].typed = {{1, 14}, {21, 34}, {41, 54}};
  EXPECT_TRUE(plan().cautions.empty());
  request_.settings.method = Method::kPlugin;
  const std::vector<std::string> cautions = plan().cautions;
  ASSERT_EQ(cautions.size(), 1U);
  EXPECT_EQ(cautions[0].find("condition 'c' has 39 effective volumes"), 0U) << cautions[0];
  request_.conditions[0].typed[0].last = 15;
  EXPECT_TRUE(plan().cautions.empty());
}

TEST_F(PlanStudy, RunsOfTwoGridsAreRefused) {
  Series other = readSeries(scratch_.folder() / "bold2.nii.gz");
  other.header.affine.at(0, 3) += 5;
  other.header.qformCode = 0;
  writeSeries(scratch_.folder() / "moved.nii.gz", other);
  request_.runs.push_back(request_.runs[0]);
  request_.runs[1].name = "run2";
  request_.runs[1].bold = here("moved.nii.gz");
  request_.runs[1].mask.clear();
  EXPECT_NE(messageOf<InputError>([&] { plan(); }).find("runs 'run1' and 'run2' lie on different grids"),
            std::string::npos);
}

}  // namespace
}  // namespace study
