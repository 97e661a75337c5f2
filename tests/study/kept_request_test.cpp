#include "study/kept_request.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "request/request_file.h"
#include "results/output_names.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace study {
namespace {

using testing::HasSubstr;
using testing::Not;

struct KeptRequest : testing::Test {
  Scratch folder;
  StudyPlan plan;
  KeptRequest() {
    const auto file = folder.write("data/study.toml", small_study::request());
    small_study::writeTo(folder.folder() / "data");
    Request request = readRequestFile(file);
    request.output.folder = folder.folder() / "out";
    std::filesystem::create_directories(request.output.folder);
    plan = planStudy(request, 77, "1.0");
  }
  [[nodiscard]] std::filesystem::path requestFile() const {
    return plan.request.output.folder / requestFileOf(plan.request.output.prefix);
  }
  static StudyOutcome failureOf(const std::string& request, const std::string& reference) {
    StudyOutcome outcome;
    outcome.references.push_back({request, reference, false, false, "constant\tcourses", {}});
    return outcome;
  }
};

// What is read back asks for the same results: equal keys.
TEST_F(KeptRequest, InItsPlaceAsksForTheSameResults) {
  keepRequest(plan);
  const Request again = readRequestFile(requestFile());
  const StudyPlan planned = planStudy(again, *again.seed, "1.0");
  EXPECT_EQ(planned.seed, 77U);
  ASSERT_EQ(planned.regions.size(), plan.regions.size());
  StudyPlan first = plan, second = planned;
  settleOrder(first, 1);
  settleOrder(second, 1);
  for (std::size_t region = 0; region < first.regions.size(); ++region)
    EXPECT_EQ(resultKey(first, region), resultKey(second, region));
  EXPECT_TRUE(std::filesystem::equivalent(planned.request.output.folder, plan.request.output.folder));
}

TEST_F(KeptRequest, HasNoAbsolutePath) {
  keepRequest(plan);
  EXPECT_THAT(contentOf(requestFile()), Not(HasSubstr(folder.path())));
  EXPECT_THAT(contentOf(requestFile()), HasSubstr("bold = \"../data/bold1.nii.gz\""));
}

TEST_F(KeptRequest, FailuresStandInATableUntilThereAreNone) {
  const auto table = plan.request.output.folder / failuresFileOf(plan.request.output.prefix);
  keepFailures(plan, failureOf(plan.request.title, "A"));
  EXPECT_EQ(contentOf(table), "reference\tmessage\nA\t\"constant\tcourses\"\n");
  keepFailures(plan, failureOf("another request", "A"));
  EXPECT_FALSE(std::filesystem::exists(table));
}

TEST_F(KeptRequest, FailuresOfOtherRequestsStay) {
  const auto table = folder.folder() / kRequestFailuresFile;
  StudyOutcome outcome;
  outcome.failures = {"sub-02: no mask", "sub-01: no run"};
  keepRequestFailures(folder.folder(), {"sub-01", "sub-02"}, outcome);
  EXPECT_EQ(contentOf(table), "request\tmessage\nsub-01\tsub-01: no run\nsub-02\tsub-02: no mask\n");
  outcome.failures = {"sub-03: no run"};
  keepRequestFailures(folder.folder(), {"sub-02", "sub-03"}, outcome);
  EXPECT_EQ(contentOf(table), "request\tmessage\nsub-01\tsub-01: no run\nsub-03\tsub-03: no run\n");
  outcome.failures.clear();
  keepRequestFailures(folder.folder(), {"sub-01", "sub-03"}, outcome);
  EXPECT_FALSE(std::filesystem::exists(table));
}

}  // namespace
}  // namespace study
