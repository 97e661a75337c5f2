#include "workbench/explore_ask.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/workbench/status_of.h"

namespace {

using Json = nlohmann::ordered_json;

study::RunRequest run(const std::string& name, const std::string& confounds) {
  study::RunRequest run;
  run.name = name;
  run.confounds = confounds;
  run.confoundTerms = {"9p"};
  run.censoring.fdThresholdMm = 0.75;
  return run;
}

// Runs a and b, of which b has no confounds; conditions of both, of b alone, and of b's voxels with a's
// reference.
study::Request request() {
  study::Request request;
  request.runs = {run("a", "a.tsv"), run("b", "")};
  request.conditions.resize(3);
  request.conditions[0].name = "both";
  request.conditions[0].parts = {{"a", "a", {}}, {"b", "b", {}}};
  request.conditions[1].name = "second";
  request.conditions[1].parts = {{"b", "b", {}}};
  request.conditions[2].name = "pair";
  request.conditions[2].parts = {{"a", "b", {}}};
  return request;
}

study::Request changed(const char* settings) {
  return workbench::withSettings(request(), Json::parse(settings));
}

int refusal(const char* settings) {
  return statusOf([&] { (void)changed(settings); });
}

std::vector<std::string> conditionsOf(const study::Request& request) {
  std::vector<std::string> names;
  for (const study::ConditionRequest& condition : request.conditions) names.push_back(condition.name);
  return names;
}

using Names = std::vector<std::string>;

TEST(ExploreSettings, WithoutAnyLeaveTheRequestAsItIs) {
  EXPECT_EQ(changed("{}"), request());
  EXPECT_EQ(changed(R"({"runs": ["b", "a"]})"), request());
}

TEST(ExploreSettings, RunsTakeTheirConditionsWithThem) {
  const study::Request first = changed(R"({"runs": ["a"]})");
  ASSERT_EQ(first.runs.size(), 1U);
  EXPECT_EQ(first.runs[0].name, "a");
  EXPECT_EQ(conditionsOf(first), (Names{"both"})) << "a pair needs both of its runs";
  EXPECT_EQ(first.conditions[0].parts.size(), 1U);
  EXPECT_EQ(conditionsOf(changed(R"({"runs": ["b"]})")), (Names{"both", "second"}));
}

TEST(ExploreSettings, RefuseToLeaveNothing) {
  EXPECT_EQ(refusal(R"({"runs": []})"), 400);
  EXPECT_EQ(refusal(R"({"runs": ["c"]})"), 400);
  EXPECT_EQ(refusal(R"({"runs": "a"})"), 400);
  EXPECT_EQ(refusal(R"({"runs": [1]})"), 400);
  study::Request second = request();
  second.conditions.erase(second.conditions.begin());
  EXPECT_EQ(statusOf([&] { (void)workbench::withSettings(second, Json::parse(R"({"runs": ["a"]})")); }), 400);
}

TEST(ExploreSettings, ConfoundsAreOfRunsThatHaveATable) {
  const study::Request motion = changed(R"({"confounds": "6motion"})");
  EXPECT_EQ(motion.runs[0].confoundTerms, (Names{"6motion"}));
  EXPECT_EQ(motion.runs[1].confoundTerms, (Names{"9p"}));
  EXPECT_EQ(changed(R"({"confounds": ["csf", "wm"]})").runs[0].confoundTerms, (Names{"csf", "wm"}));
  for (const char* none : {R"({"confounds": "none"})", R"({"confounds": ""})", R"({"confounds": null})"})
    EXPECT_TRUE(changed(none).runs[0].confoundTerms.empty()) << none;
  EXPECT_EQ(refusal(R"({"confounds": "acompcor0"})"), 400);
  EXPECT_EQ(refusal(R"({"confounds": [3]})"), 400);
}

TEST(ExploreSettings, CensoringIsOfRunsThatHaveATable) {
  const study::Request censored = changed(R"({"censoring": {"fdThresholdMm": 0.25}})");
  EXPECT_EQ(censored.runs[0].censoring.fdThresholdMm, 0.25);
  EXPECT_EQ(censored.runs[1].censoring.fdThresholdMm, 0.75);
  EXPECT_EQ(changed(R"({"censoring": {"fdThresholdMm": null}})").runs[0].censoring.fdThresholdMm, 0);
  EXPECT_EQ(refusal(R"({"censoring": {}})"), 400);
  EXPECT_EQ(refusal(R"({"censoring": {"fdThresholdMm": "x"}})"), 400);
}

TEST(ExplorePoint, HasThreeFiniteNumbers) {
  EXPECT_EQ(workbench::pointFrom(Json::parse(R"({"mm": [1, -2.5, 3]})"), "mm"),
            (std::array<double, 3>{1, -2.5, 3}));
  for (const char* wrong : {"{}", "[]", R"({"mm": 1})", R"({"mm": [1, 2]})", R"({"mm": [1, 2, 3, 4]})",
                            R"({"mm": [1, 2, "3"]})", R"({"mm": [1, 2, null]})"})
    EXPECT_EQ(statusOf([&] { (void)workbench::pointFrom(Json::parse(wrong), "mm"); }), 400) << wrong;
}

}  // namespace
