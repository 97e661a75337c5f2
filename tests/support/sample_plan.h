// A plan of two references over two runs and a pair, without any file.
#ifndef TAVMAP_TESTS_SUPPORT_SAMPLE_PLAN_H
#define TAVMAP_TESTS_SUPPORT_SAMPLE_PLAN_H

#include "study/study_plan.h"
#include "tests/support/sample_result.h"

namespace sample_plan {

inline study::StudyPlan plan() {
  study::StudyPlan plan;
  plan.request = sample_result::request();
  plan.version = "1.2.3";
  plan.runs = sample_result::runs();
  for (study::RunPlan& run : plan.runs) run.grid.size = {61, 73, 67};
  plan.regions = {{"V1", {3, 4, 5, 6, 7, 8}, {}}, {"V2", {9, 10, 11}, {"note of V2"}}};
  plan.regionLabels = {"V1", "V2"};
  plan.seed = 7001;
  plan.cautions = {"filtered"};
  plan.order = 4;
  plan.conditions = {{"faces", {{"b", "a", {{23, 42}, {53, 88}}}, {"c", "c", {{91, 160}}}}, 127, 115, {}},
                     {"houses", {{"d", "d", {{24, 133}}}}, 128, 116, {}}};
  plan.conditionLabels = {"faces", "houses"};
  return plan;
}

}  // namespace sample_plan

#endif
