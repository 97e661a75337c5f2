#include "study/usable_region.h"

#include <cmath>

#include "request/problem.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "study/reference_job.h"
#include "tests/support/message_of.h"
#include "tests/support/prepared_study.h"

namespace study {
namespace {

class UsableRegionOf : public PreparedStudy {};

TEST_F(UsableRegionOf, WholeCoursesIsTheRegionItself) {
  const StudyPlan plan = prepared();
  const UsableRegion usable = usableRegion(plan, 0);
  EXPECT_EQ(usable.region.coordinates, plan.regions[0].coordinates);
  EXPECT_TRUE(usable.notes.empty());
}

TEST_F(UsableRegionOf, ValuesThatAreNoNumbersIsWithoutTheirVoxels) {
  bold_.at(3, 3, 3, 17) = std::nanf("");
  bold_.at(2, 4, 4, 0) = INFINITY;
  const StudyPlan plan = prepared();
  const UsableRegion usable = usableRegion(plan, 0);
  EXPECT_EQ(usable.region.voxels(), small_study::regionVoxels() - 2);
  EXPECT_EQ(usable.region.coordinates[0], 2);
  EXPECT_EQ(usable.region.coordinates[4], 4);  // (3, 3, 3) was the second
  EXPECT_EQ(usable.notes, (std::vector<std::string>{
                              "reference 'A': 2 of 8 voxels are left out, 2 with values that are not finite "
                              "in single precision (run 'run1')"}));
}

// With a mask the zeros become the constant that is added.
TEST_F(UsableRegionOf, ZerosThroughoutIsWithoutThemWhateverWasAdded) {
  for (const bool masked : {true, false}) {
    fillOfRegion(3, 0);
    if (!masked) request_.runs[0].mask.clear();
    const StudyPlan plan = prepared();
    EXPECT_EQ(usableRegion(plan, 0).notes,
              (std::vector<std::string>{"reference 'A': 3 of 8 voxels are left out, 3 that are 0 throughout, "
                                        "as outside the field of view (run 'run1')"}));
  }
}

TEST_F(UsableRegionOf, AnotherConstantIsTheRegionItself) {
  fillOfRegion(3, 900);
  EXPECT_EQ(usableRegion(prepared(), 0).region.voxels(), small_study::regionVoxels());
}

TEST_F(UsableRegionOf, HalfOfItsVoxelsIsEnoughAndLessIsRefused) {
  fillOfRegion(4, 0);
  EXPECT_EQ(usableRegion(prepared(), 0).region.voxels(), 4);
  bold_.at(3, 4, 4, 9) = std::nanf("");
  const StudyPlan plan = prepared();
  EXPECT_EQ(
      messageOf<InputError>([&] { return usableRegion(plan, 0); }),
      "reference 'A': 5 of 8 voxels have no course (1 with values that are not finite in single precision, 4 "
      "that are 0 throughout, as outside the field of view; run 'run1'), and what is left does not "
      "stand for it; take another reference, or repair the images");
}

TEST_F(UsableRegionOf, ThePluginIsTheRegionItself) {
  request_.settings.method = Method::kPlugin;
  bold_.at(3, 3, 3, 17) = std::nanf("");
  EXPECT_EQ(usableRegion(prepared(), 0).region.voxels(), small_study::regionVoxels());
}

TEST_F(UsableRegionOf, ARunThatNoConditionTakesItsCourseFromIsNotLookedAt) {
  request_.runs.push_back(request_.runs[0]);
  request_.runs[1].name = "run2";
  request_.runs[1].bold = scratch_.folder() / "bold2.nii.gz";
  Series second = readSeries(request_.runs[1].bold);
  second.at(2, 3, 3, 5) = std::nanf("");
  writeSeries(request_.runs[1].bold, second);
  EXPECT_TRUE(usableRegion(prepared(), 0).notes.empty());
  request_.conditions[0].parts.push_back({"run2", "run2", {}});
  EXPECT_EQ(usableRegion(prepared(), 0).notes,
            (std::vector<std::string>{"reference 'A': 1 of 8 voxels are left out, 1 with values that are not "
                                      "finite in single precision (run 'run2')"}));
}

TEST_F(UsableRegionOf, TheResultCountsWhatIsLeftAndSaysSo) {
  bold_.at(3, 3, 3, 17) = std::nanf("");
  const StudyPlan plan = prepared();
  computeReferences(plan, {0}, [](double) {});
  const Record record =
      readRecordFile((plan.request.output.folder / OutputNames("p", plan.regionLabels[0]).record()).string());
  EXPECT_EQ(record.referenceVoxels, 7);
  EXPECT_EQ(record.conditions[0].voxels[static_cast<std::size_t>(StatusCode::kInsideReference)], 7U);
  EXPECT_GT(record.conditions[0].voxelsComputed(), 100U);
  EXPECT_EQ(record.warnings.front(),
            "reference 'A': 1 of 8 voxels are left out, 1 with values that are not finite in single "
            "precision (run 'run1')");
  EXPECT_TRUE(finishedRecord(plan, 0));
}

}  // namespace
}  // namespace study
