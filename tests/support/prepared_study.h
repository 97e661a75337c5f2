// One run of the small data set, whose values a test may change, prepared for the engine in this process.
#ifndef TAVMAP_TESTS_SUPPORT_PREPARED_STUDY_H
#define TAVMAP_TESTS_SUPPORT_PREPARED_STUDY_H

#include <gtest/gtest.h>

#include <string>

#include "prepare/prepare.h"
#include "study/study_plan.h"
#include "tests/support/image_series.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

class PreparedStudy : public ::testing::Test {
 protected:
  PreparedStudy() {
    small_study::writeTo(scratch_.folder());
    bold_ = readSeries(scratch_.folder() / "bold1.nii.gz");
    request_.title = "r.toml";
    request_.output = {scratch_.folder() / "out", scratch_.folder() / "work", "p"};
    request_.settings.surrogates = 20;
    request_.settings.nullDraws = 2;
    request_.settings.fweDraws = 0;
    study::RunRequest& run = request_.runs.emplace_back();
    run.name = "run1";
    run.bold = scratch_.folder() / "bold1.nii.gz";
    run.mask = scratch_.folder() / "mask.nii.gz";
    study::ReferenceRequest& reference = request_.references.emplace_back();
    reference.image = scratch_.folder() / "dseg.nii.gz";
    reference.labels = {"A"};
    study::ConditionRequest& condition = request_.conditions.emplace_back();
    condition.name = "whole";
    condition.parts = {{"run1", "run1", {}}};
  }

  // Gives the voxel one value at all volumes.
  void fill(int x, int y, int z, float value) {
    for (int v = 0; v < small_study::kVolumes; ++v) bold_.at(x, y, z, v) = value;
  }
  // Gives it to the first voxels of region A, at most 8.
  void fillOfRegion(int voxels, float value) {
    for (int i = 0; i < voxels; ++i) fill(2 + i % 2, 3 + i / 2 % 2, 3 + i / 4, value);
  }
  // The plan, with all runs imported.
  study::StudyPlan prepared() {
    writeSeries(scratch_.folder() / "bold1.nii.gz", bold_);
    study::StudyPlan plan = study::planStudy(request_, 7, "1");
    std::filesystem::create_directories(plan.workFolder);
    for (const study::RunPlan& run : plan.runs)
      study::prepareRun(run, plan.workFolder, plan.request.settings.inclusionThreshold, [](double) {});
    return plan;
  }

  Scratch scratch_;
  Series bold_;
  study::Request request_;
};

#endif
