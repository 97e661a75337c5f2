#include "bids/bids_study.h"

#include <gtest/gtest.h>

#include "request/request_text.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

// What a worker gets of a request that no file holds.
TEST(BidsStudy, RequestsReadBackFromTheirText) {
  Scratch scratch;
  const std::string begin = "raw/derivatives/prep/sub-01/func/sub-01_task-rest_";
  for (const char* run : {"run-1", "run-2"}) {
    scratch.write(begin + run + "_space-MNI_desc-preproc_bold.nii.gz");
    scratch.write(begin + run + "_space-MNI_desc-brain_mask.nii.gz");
    scratch.write(begin + run + "_desc-confounds_timeseries.tsv");
  }
  scratch.write("raw/task-rest_events.tsv");
  BidsOptions options;
  options.bidsDir = scratch.folder() / "raw";
  options.outDir = scratch.folder() / "out";
  options.derivatives = {scratch.folder() / "raw/derivatives/prep"};
  options.atlas = scratch.write("dseg.nii.gz");
  options.trialTypes = {"face", "house"};
  options.delaySeconds = 4.5;
  options.configuration.settings.orderChoice = OrderChoice::kBic;
  options.configuration.preparation.confoundTerms = {"24motion"};
  options.configuration.preparation.dropVolumes = kDropFromConfounds;
  options.configuration.preparation.censoring.fdThresholdMm = 0.5;
  const std::vector<Request> requests = bidsRequests(options);
  ASSERT_EQ(requests.size(), 1U);
  ASSERT_EQ(requests[0].conditions.size(), 2U);
  ASSERT_EQ(requests[0].datasets.size(), 2U);
  EXPECT_EQ(withoutLines(parseRequest(requestText(requests[0]), "text", "/elsewhere")), requests[0]);
}

}  // namespace
}  // namespace study
