#include "request/request_text.h"

#include <gtest/gtest.h>
#include <toml++/toml.h>

#include "request/request_file.h"
#include "request/toml_text.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

// Every value of the request differs from its default, so that a key that is not written shows.
class RequestText : public ::testing::Test {
 protected:
  std::filesystem::path file(const std::string& name) { return scratch_.write(name); }

  Request readBack(const Request& request) {
    return withoutLines(parseRequest(requestText(request), "text", scratch_.folder()));
  }

  static Settings settings() {
    Settings s;
    s.order = 3, s.maxOrder = 7, s.orderSample = 123, s.nullDraws = 11, s.fweDraws = 66;
    s.mapTypes = {tav::MapType::REF2VOX, tav::MapType::DTAV_RC};
    s.qValues = {1e-7, 0.1, 1.0 / 3};
    s.fdrConstant = 1.0 / 0.7, s.surrogates = 77, s.discardedTimePoints = 55, s.inclusionThreshold = 33;
    s.instantaneousLower = 0.1 + 0.2, s.rcUpper = 0.123456789012345678, s.mapScale = 1e-2;
    return s;
  }

  RunRequest run(const std::string& name) {
    RunRequest run;
    run.name = name;
    run.bold = file(name + " \"b\\old\".nii.gz"), run.mask = file(name + "_m.nii.gz");
    run.events = file(name + "_e.tsv"), run.confounds = file(name + "_c.tsv");
    run.confoundTerms = {"24motion", "acompcor5"};
    run.dropVolumes = 4, run.trSeconds = 0.72;
    run.censoring = {0.3, 9, 2, 1};
    return run;
  }

  std::vector<ReferenceRequest> references() {
    ReferenceRequest labels, all, mask, sphere, voxels;
    labels.name = "renamed", labels.image = file("l.nii.gz"), labels.table = file("l.tsv");
    labels.labels = {"7"};
    all.image = file("a.nii.gz"), all.allLabels = true, all.probability = 0.3;
    mask.kind = ReferenceKind::kMask, mask.name = "m", mask.image = file("m.nii.gz");
    sphere.kind = ReferenceKind::kSphere, sphere.name = "s";
    sphere.centreMm = {-20.1, 1.0 / 7, 3}, sphere.radiusMm = 8.05;
    voxels.kind = ReferenceKind::kVoxels, voxels.name = "v", voxels.voxels = {{1, 2, 3}, {0, 0, 32767}};
    return {labels, all, mask, sphere, voxels};
  }

  static std::vector<ConditionRequest> conditions() {
    ConditionRequest whole, typed, perRun, paired, events;
    whole.name = "whole", whole.parts = {{"b", "b", {}}, {"a", "a", {}}};
    typed.name = "typed", typed.kind = IntervalKind::kTyped, typed.parts = {{"a", "a", {}}};
    typed.typed = {{1, 20}, {31, 40}};
    perRun.name = "per run", perRun.kind = IntervalKind::kTyped;
    perRun.parts = {{"a", "a", {{2, 9}}}, {"b", "b", {{1, 5}, {7, 8}}}};
    paired.name = "pairs", paired.parts = {{"a", "b", {}}, {"b", "b", {}}};
    events.name = "events", events.kind = IntervalKind::kEvents, events.parts = {{"b", "b", {}}};
    events.trialTypes = {"face", "'house'\n"};
    events.delaySeconds = -4.25, events.joinGapSeconds = 0.7, events.minimumVolumes = 6;
    return {whole, typed, perRun, paired, events};
  }

  Request request() {
    Request request;
    request.title = "sub-01, \"task\"";
    request.output = {"/out/sub-01", "/work", "sub-01_task-rest"};
    request.settings = settings();
    request.connectome = {333, {"global signal", "a, \"b\""}};
    request.seed = 2147483647U;
    request.runs = {run("a"), run("b")};
    request.references = references();
    request.conditions = conditions();
    request.anatomy = file("t1.nii.gz");
    request.datasets = {{"raw", "/data"}, {"pre processed", "/data/derivatives"}};
    return request;
  }
  Scratch scratch_;
};

TEST_F(RequestText, ReadsBackToAnEqualRequest) {
  const Request given = request();
  const Request back = readBack(given);
  EXPECT_EQ(back.title, given.title);
  EXPECT_EQ(back.output, given.output);
  EXPECT_EQ(back.settings, given.settings);
  EXPECT_EQ(back.connectome, given.connectome);
  EXPECT_EQ(back.seed, given.seed);
  EXPECT_EQ(back.runs, given.runs);
  EXPECT_EQ(back.references, given.references);
  EXPECT_EQ(back.conditions, given.conditions);
  EXPECT_EQ(back.datasets, given.datasets);
  EXPECT_EQ(back.anatomy, given.anatomy);
  EXPECT_EQ(back, given);
}

TEST_F(RequestText, HasNoTableOfConnectomesThatSayNothingNew) {
  Request given = request();
  given.connectome = {};
  EXPECT_EQ(requestText(given).find("[connectome]"), std::string::npos);
}

TEST_F(RequestText, ChoicesThatExcludeOthersReadBackToo) {
  Request given = request();
  given.settings.order = 1;
  for (const OrderChoice choice : {OrderChoice::kBic, OrderChoice::kAic, OrderChoice::kHqc}) {
    given.settings.orderChoice = choice;
    EXPECT_EQ(readBack(given), given) << orderChoiceName(choice);
  }
  given.settings.method = Method::kPlugin;
  given.settings.nullDraws = 1, given.settings.fweDraws = 0;
  given.settings.fdrConstant = Settings{}.fdrConstant, given.settings.cvConstant = 1;
  given.seed.reset();
  given.output.workFolder.clear();
  given.datasets.clear();
  given.runs[0].dropVolumes = kDropFromConfounds;
  RunRequest plain;
  plain.name = "plain", plain.bold = file("plain.nii");
  given.runs.push_back(plain);
  EXPECT_EQ(readBack(given), given);
}

TEST_F(RequestText, ARequestOfAFileReadsBackFromAnywhere) {
  file("bold.nii.gz"), file("dseg.nii.gz"), file("events.tsv");
  const Request given =
      withoutLines(parseRequest("[[run]]\nbold = 'bold.nii.gz'\nevents = 'events.tsv'\n"
                                "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = [3, 'V1']\n"
                                "[[condition]]\nname = 'c'\ntrial_types = 'face'\n",
                                "r.toml", scratch_.folder()));
  EXPECT_EQ(withoutLines(parseRequest(requestText(given), "text", "/elsewhere")), given);
}

TEST_F(RequestText, LinesDoNotCount) {
  Request given = request();
  given.runs[0].line = given.references[1].line = given.conditions[2].line = 17;
  EXPECT_NE(given, request());
  EXPECT_EQ(readBack(given), request());
}

TEST(TomlText, EscapesWhatTextsMayNotHold) {
  EXPECT_EQ(tomlText("a\"b\\c\td\x7f é"), "\"a\\\"b\\\\c\\u0009d\\u007F é\"");
}

TEST(TomlText, NumbersReadBackExactly) {
  for (const double value : {0.1, 1.0 / 3, 1e-300, 123456789.0, 0.72, -4e22}) {
    EXPECT_EQ(toml::parse("x = " + tomlNumber(value))["x"].value<double>(), value);
  }
}

}  // namespace
}  // namespace study
