// Results that lie under a request's names: its own, another's, and those of references that it lacks.
#include "study/earlier_results.h"

#include <gtest/gtest.h>

#include <functional>

#include "request/problem.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "results/result_json.h"
#include "study/planned_result.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"
#include "tests/support/typed_condition.h"

namespace study {
namespace {

namespace fs = std::filesystem;

class EarlierResults : public ::testing::Test {
 protected:
  EarlierResults() {
    small_study::writeTo(scratch_.folder());
    request_.title = "r.toml";
    request_.output.folder = scratch_.folder() / "out";
    request_.output.prefix = "p";
    RunRequest& run = request_.runs.emplace_back();
    run.name = "run1";
    run.bold = scratch_.folder() / "bold1.nii.gz";
    run.mask = scratch_.folder() / "mask.nii.gz";
    ReferenceRequest& reference = request_.references.emplace_back();
    reference.image = scratch_.folder() / "dseg.nii.gz";
    reference.labels = {"A", "B"};
    request_.conditions = {typedCondition("first", {1, 80}), typedCondition("second", {81, 160})};
  }
  StudyPlan plan() const { return planStudy(request_, 7, "1"); }
  // As if the references of the request had been computed.
  void finish(const StudyPlan& plan) const {
    for (std::size_t i = 0; i < plan.regions.size(); ++i) {
      const ResultContext context{plan.request, plan.runs, plan.version, plan.seed, plan.order, {}};
      Record record = referenceRecord(context, resultOf(plan, i), resultKey(plan, i));
      const OutputNames names(plan.request.output.prefix, plan.regionLabels[i]);
      record.files = {{names.courses(), 1}};
      scratch_.write("out/" + names.courses(), "x");
      scratch_.write("out/" + names.record(), recordText(record));
    }
  }
  static ReferenceResult resultOf(const StudyPlan& plan, std::size_t region) {
    ReferenceResult result = emptyResult(plan, region);
    for (ConditionResult& condition : result.conditions) {
      for (const tav::MapType type : plan.request.settings.mapTypes) {
        condition.maps.push_back({type, "", {}});
        for (const double q : plan.request.settings.qValues)
          condition.maps.back().thresholds.push_back({q, {}, 0, 0});
      }
    }
    return result;
  }
  // What is said when the request changes after its results were made.
  std::string refusalAfter(const std::function<void()>& change) {
    const Request before = request_;
    finish(plan());
    change();
    const std::string text = messageOf<InputError>([this] { refuseOtherRequests({plan()}); });
    request_ = before;
    return text;
  }

  Scratch scratch_;
  Request request_;
};

TEST_F(EarlierResults, OfTheSameRequestAreNoObstacle) {
  EXPECT_NO_THROW(refuseOtherRequests({plan()}));
  finish(plan());
  EXPECT_NO_THROW(refuseOtherRequests({plan()}));
  EXPECT_EQ(foreignResultsCaution(plan()), "");
}

TEST_F(EarlierResults, EverythingThatDiffersIsNamedForAllItsReferences) {
  const auto expect = [&](const std::string& difference, const std::function<void()>& change) {
    const std::string text = refusalAfter(change);
    EXPECT_EQ(
        text.find("r.toml: " + (scratch_.folder() / "out").string() +
                  " has results of another request named p_seed-*. They differ in 'A', 'B': " + difference +
                  ". Nothing was changed. Choose another output folder or prefix, or give --force"),
        0U)
        << text;
  };
  Settings& settings = request_.settings;
  expect("number of surrogates: 1000 there, 40 now", [&] { settings.surrogates = 40; });
  expect("q: 0.01, 0.05, 0.1 there, 0.05 now", [&] { settings.qValues = {0.05}; });
  expect("map types: REF2VOX, VOX2REF, INST, DTAV, DTAV_IT, DTAV_RC there, REF2VOX now",
         [&] { settings.mapTypes = {tav::REF2VOX}; });
  expect("conditions: 'first', 'second' there, 'first' now", [&] { request_.conditions.pop_back(); });
  expect("intervals of condition 'first': run1 1-80 there, run1 1-79 now", [&] {
    request_.conditions[0].typed = {{1, 79}};
  });
  expect(
      "repetition times of condition 'first': 2 s there, 3 s now; repetition times of condition 'second': 2 "
      "s "
      "there, 3 s now",
      [&] { request_.runs[0].trSeconds = 3; });
  expect("an input: its path, size or time of change", [&] { request_.runs[0].mask.clear(); });
}

TEST_F(EarlierResults, AnInputThatWasChangedSinceIsNamed) {
  const fs::path mask = scratch_.folder() / "mask.nii.gz";
  const std::string text =
      refusalAfter([&] { fs::last_write_time(mask, fs::last_write_time(mask) + std::chrono::hours(1)); });
  EXPECT_NE(text.find("'A', 'B': " + mask.string() + " was changed since"), std::string::npos) << text;
}

TEST_F(EarlierResults, OneThatIsNotWholeIsNoObstacleAndOneOfAnotherVersionIs) {
  finish(plan());
  scratch_.write("out/p_seed-A_tavmap.json", R"({"Key": "12)");
  EXPECT_NO_THROW(refuseOtherRequests({plan()}));
  scratch_.write("out/p_seed-A_tavmap.json", R"({"Key": "12"})");
  EXPECT_NE(messageOf<InputError>([this] {
              refuseOtherRequests({plan()});
            }).find("'A': a record that this version cannot read"),
            std::string::npos);
}

// Until the criterion has spoken the order of what is there is as good as any.
TEST_F(EarlierResults, AnOrderThatACriterionMayFindIsNoDifferenceBeforeItIsSettled) {
  request_.settings.orderChoice = OrderChoice::kBic;
  StudyPlan found = plan();
  settleOrder(found, 3);
  finish(found);
  EXPECT_NO_THROW(refuseOtherRequests({plan()}));
  EXPECT_NO_THROW(refuseOtherRequests({found}, OrderIs::kSettled));
  settleOrder(found, 2);
  EXPECT_NE(messageOf<InputError>([&] {
              refuseOtherRequests({found}, OrderIs::kSettled);
            }).find("model order: 3 there, 2 now"),
            std::string::npos);
}

TEST_F(EarlierResults, OfReferencesThatAreNotAskedForAreNamedAndRemovedOnDemand) {
  finish(plan());
  scratch_.write("out/p_seed-A_more_tavmap.json", contentOf(scratch_.file("out/p_seed-A_tavmap.json")));
  scratch_.write("out/pp_seed-A_tavmap.json", contentOf(scratch_.file("out/p_seed-A_tavmap.json")));
  request_.references[0].labels = {"B"};
  EXPECT_NO_THROW(refuseOtherRequests({plan()}));
  EXPECT_EQ(foreignResultsCaution(plan()),
            scratch_.file("out") +
                " also has results of references that this request does not have: 'A' "
                "(p_seed-A_tavmap.json). They stay; --force removes them");
  EXPECT_NE(removeForeignResults(plan()).find("'A' (p_seed-A_tavmap.json)"), std::string::npos);
  EXPECT_EQ(removeForeignResults(plan()), "");
  std::set<std::string> left;
  for (const auto& [name, content] : filesBelow(scratch_.folder() / "out")) left.insert(name);
  EXPECT_EQ(left,
            (std::set<std::string>{"p_seed-A_more_tavmap.json", "p_seed-B_desc-reference_timeseries.tsv",
                                   "p_seed-B_tavmap.json", "pp_seed-A_tavmap.json"}));
}

}  // namespace
}  // namespace study
