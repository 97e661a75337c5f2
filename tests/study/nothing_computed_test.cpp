// Conditions without a computed voxel are failures that say why.
#include "study/nothing_computed.h"

#include <cmath>

#include "request/problem.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "study/reference_job.h"
#include "tests/support/message_of.h"
#include "tests/support/prepared_study.h"

namespace study {
namespace {

class NothingComputed : public PreparedStudy {
 protected:
  std::string problem() {
    const StudyPlan plan = prepared();
    std::string text = messageOf<InputError>([&] { computeReferences(plan, {0}, [](double) {}); });
    EXPECT_FALSE(finishedRecord(plan, 0));
    const std::string begin = "reference 'A', condition 'whole': no voxel could be computed: ";
    EXPECT_EQ(text.substr(0, begin.size()), begin) << text;
    return text.substr(std::min(text.size(), begin.size()));
  }
  void overwrite(float value, bool region) {
    for (int z = 0; z < small_study::kDims[2]; ++z) {
      for (int y = 0; y < small_study::kDims[1]; ++y) {
        for (int x = 0; x < small_study::kDims[0]; ++x) {
          const bool inside = x >= 2 && x < 4 && y >= 3 && y < 5 && z >= 3 && z < 5;
          if (inside == region) fill(x, y, z, value);
        }
      }
    }
  }
};

TEST_F(NothingComputed, OfAConstantReference) {
  overwrite(900, true);
  EXPECT_EQ(
      problem(),
      "the courses of the reference in run 'run1' are constant over its intervals; without change there "
      "is no influence to see, check the image");
}

TEST_F(NothingComputed, OfConstantVoxels) {
  overwrite(900, false);
  EXPECT_EQ(problem(),
            "the voxels of run 'run1' are constant over its intervals; without change there is no influence "
            "to see, check the image");
}

TEST_F(NothingComputed, OfVoxelsThatAreNotFinite) {
  for (int z = 0; z < small_study::kDims[2]; ++z) {
    for (int y = 0; y < small_study::kDims[1]; ++y) {
      for (int x = 0; x < small_study::kDims[0]; ++x) {
        const bool inside = x >= 2 && x < 4 && y >= 3 && y < 5 && z >= 3 && z < 5;
        if (!inside) bold_.at(x, y, z, 20) = INFINITY;
      }
    }
  }
  EXPECT_EQ(
      problem(),
      "the voxels of run 'run1' hold values beyond single precision (magnitudes above 3.4e38) or values "
      "that are no numbers; repair the image, or scale it down");
}

TEST_F(NothingComputed, OfAReferenceThatIsNotFiniteWithThePlugin) {
  request_.settings.method = Method::kPlugin;
  bold_.at(3, 3, 3, 17) = std::nanf("");
  EXPECT_EQ(
      problem(),
      "the courses of the reference in run 'run1' hold values beyond single precision (magnitudes above "
      "3.4e38) or values that are no numbers; repair the image, or scale it down");
}

TEST_F(NothingComputed, OfIntervalsThatAreTooShort) {
  request_.settings.order = 6;
  request_.conditions[0].kind = IntervalKind::kTyped;
  request_.conditions[0].typed = {{1, 9}};
  EXPECT_EQ(problem(),
            "the intervals are too short, 3 effective volumes for the 12 coefficients of each equation of a "
            "model of order 6; give longer intervals or a lower order");
}

TEST_F(NothingComputed, OfAMaskThatIsTheReference) {
  formats::Image3D mask = formats::readImage((scratch_.folder() / "mask.nii.gz").string());
  for (std::size_t i = 0; i < mask.values.size(); ++i) {
    const auto at = mask.header.size.voxelAt(i);
    const bool inside = at[0] >= 2 && at[0] < 4 && at[1] >= 3 && at[1] < 5 && at[2] >= 3 && at[2] < 5;
    mask.values[i] = inside ? 1.0F : 0.0F;
  }
  formats::writeImage((scratch_.folder() / "mask.nii.gz").string(), mask);
  EXPECT_EQ(problem(), "all voxels that are mapped belong to the reference; give a larger mask");
}

// A record of an earlier version may say so; it does not count as finished.
TEST_F(NothingComputed, IsNotFinished) {
  const StudyPlan plan = prepared();
  computeReferences(plan, {0}, [](double) {});
  const auto file = plan.request.output.folder / OutputNames("p", plan.regionLabels[0]).record();
  Record record = readRecordFile(file.string());
  ASSERT_TRUE(finishedRecord(plan, 0));
  record.conditions[0].voxels[static_cast<std::size_t>(StatusCode::kComputed)] = 0;
  std::ofstream(file) << recordText(record);
  EXPECT_FALSE(finishedRecord(plan, 0));
}

}  // namespace
}  // namespace study
