#include <gtest/gtest.h>

#include "request/problem.h"
#include "request/request_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

class RequestFile : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"bold.nii.gz", "mask.nii.gz", "dseg.nii.gz", "events.tsv", "confounds.tsv"})
      scratch_.write(name);
  }
  Request parse(const std::string& text) { return parseRequest(text, "r.toml", scratch_.folder()); }
  std::string problem(const std::string& text) {
    return messageOf<InputError>([&] { parse(text); });
  }
  // A request that is fine, and then one more line.
  std::string with(const std::string& line) { return kRun + kReference + line; }

  const std::string kRun = "[[run]]\nname = 'a'\nbold = 'bold.nii.gz'\n";
  const std::string kReference = "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['V1', 3]\n";
  Scratch scratch_;
};

TEST_F(RequestFile, TheShortestRequestMapsTheWholeRun) {
  const Request request = parse(kRun + kReference);
  ASSERT_EQ(request.conditions.size(), 1U);
  EXPECT_EQ(request.conditions[0].name, "whole");
  EXPECT_EQ(request.conditions[0].kind, IntervalKind::kWholeRun);
  ASSERT_EQ(request.conditions[0].parts.size(), 1U);
  EXPECT_EQ(request.conditions[0].parts[0].source, "a");
  EXPECT_EQ(request.references[0].labels, (std::vector<std::string>{"V1", "3"}));
  EXPECT_EQ(request.settings.method, Method::kCalibrated);
  EXPECT_EQ(request.settings.nullDraws, 20);
  EXPECT_FALSE(request.seed.has_value());
  EXPECT_EQ(request.output.folder, scratch_.folder() / "results");
}

TEST_F(RequestFile, PathsAreRelativeToTheRequest) {
  EXPECT_EQ(parse(kRun + kReference).runs[0].bold, scratch_.folder() / "bold.nii.gz");
}

TEST_F(RequestFile, AnAnatomyMayBeNamed) {
  EXPECT_EQ(parse(kRun + kReference).anatomy, "");
  EXPECT_EQ(problem("anatomy = 't1.nii.gz'\n" + kRun + kReference).substr(0, 60),
            "r.toml:1: 'anatomy' in the request names a file that does no");
  scratch_.write("t1.nii.gz");
  EXPECT_EQ(parse("anatomy = 't1.nii.gz'\n" + kRun + kReference).anatomy, scratch_.folder() / "t1.nii.gz");
}

TEST_F(RequestFile, KeysOfEndlessPartsAreRefusedAndLongListsAreNot) {
  std::string key = "a", list = "settings = { q = [0.5";
  for (int i = 0; i < 4001; ++i) key += ".a";
  for (int i = 0; i < 3999; ++i) list += ", 0.5";
  EXPECT_EQ(problem("# a line\n" + key + " = 1\n"),
            "r.toml:2: more than 4000 dots in one line; check that it is the right file");
  EXPECT_EQ(parse(list + "] }\n" + kRun + kReference).settings.qValues, std::vector<double>{0.5});
  EXPECT_EQ(problem(list + ", 0.5] }\n" + kRun + kReference),
            "r.toml:1: more than 4000 dots in one line; check that it is the right file");
}

TEST_F(RequestFile, TheExampleIsAValidRequest) {
  for (const char* name : {"bold_small.nii.gz", "mask_small.nii.gz", "dseg_small.nii.gz"})
    scratch_.write(name);
  const Request request = parse(exampleRequest());
  EXPECT_EQ(request.conditions.size(), 2U);
  EXPECT_EQ(request.conditions[1].trialTypes.size(), 6U);
  EXPECT_EQ(request.conditions[1].delaySeconds, 4.0);
  EXPECT_EQ(request.settings.order, 1);
}

TEST_F(RequestFile, ConditionsKeepTheirDelayGapAndLeastVolumes) {
  const std::string events = "[[condition]]\nname = 'c'\ntrial_types = ['face']\n";
  const std::string run = kRun + "events = 'events.tsv'\n";
  ConditionRequest condition = parse(run + kReference + events).conditions[0];
  EXPECT_EQ(condition.delaySeconds, 0);
  EXPECT_FALSE(condition.joinGapSeconds.has_value());
  EXPECT_EQ(condition.minimumVolumes, 0);
  condition =
      parse(run + kReference + events + "delay_s = 4.5\njoin_gap_s = 2.25\nmin_volumes = 12\n").conditions[0];
  EXPECT_EQ(condition.delaySeconds, 4.5);
  EXPECT_EQ(condition.joinGapSeconds, 2.25);
  EXPECT_EQ(condition.minimumVolumes, 12);
}

// Every commented key of the example must be a key that exists, with a value in range.
TEST_F(RequestFile, TheCommentedKeysOfTheExampleAreValidToo) {
  for (const char* name : {"bold_small.nii.gz", "mask_small.nii.gz", "dseg_small.nii.gz", "dseg_small.tsv",
                           "seed_mask.nii.gz", "t1_small.nii.gz"}) {
    scratch_.write(name);
  }
  std::string text = exampleRequest();
  for (std::size_t at = text.find("\n#"); at != std::string::npos; at = text.find("\n#", at + 1)) {
    if (text[at + 2] != ' ') text.erase(at + 1, 1);
  }
  for (const char* line : {"runs = [\"run1\"]", "pairs = [["}) {  // exclude each other; run2 is not there
    const std::size_t at = text.find(std::string("\n") + line);
    ASSERT_NE(at, std::string::npos);
    text.insert(at + 1, "#");
  }
  const Request request = parse(text);
  EXPECT_EQ(request.references.size(), 4U);
  EXPECT_EQ(request.conditions.size(), 3U);
  EXPECT_EQ(request.runs[0].confoundTerms.size(), 2U);
}

TEST_F(RequestFile, UnknownKeysNameLineTableAndNearestKey) {
  EXPECT_EQ(problem("prefx = 'x'\n" + kRun + kReference),
            "r.toml:1: unknown key 'prefx' in the request; did you mean 'prefix'?");
  EXPECT_EQ(problem(kRun + "confound = 'c.tsv'\n" + kReference),
            "r.toml:4: unknown key 'confound' in [[run]]; did you mean 'confounds'?");
  EXPECT_EQ(problem(with("[settings]\nordre = 2\n")),
            "r.toml:8: unknown key 'ordre' in [settings]; did you mean 'order'?");
  EXPECT_EQ(problem(with("[[condition]]\nname = 'c'\nwhole_runs = true\n")),
            "r.toml:9: unknown key 'whole_runs' in [[condition]]; did you mean 'whole_run'?");
}

TEST_F(RequestFile, MissingFilesNameTheNearest) {
  EXPECT_EQ(problem("[[run]]\nbold = 'bolt.nii.gz'\n" + kReference),
            "r.toml:2: 'bold' in [[run]] names a file that does not exist: " +
                (scratch_.folder() / "bolt.nii.gz").string() + "; did you mean 'bold.nii.gz'?");
}

TEST_F(RequestFile, SyntaxErrorsNameTheirLine) {
  EXPECT_EQ(problem("prefix = 'x'\nfolder = \n").substr(0, 9), "r.toml:2:");
}

TEST_F(RequestFile, SettingsOutsideTheirRangeAreRefused) {
  const auto setting = [&](const std::string& line) { return problem(with("[settings]\n" + line + "\n")); };
  EXPECT_EQ(setting("order = 21"),
            "r.toml:8: 'order' in [settings] is '21'; it must be 1 to 20, \"bic\", \"aic\" or \"hqc\"");
  EXPECT_EQ(setting("null_draws = 0"), "r.toml:8: 'null_draws' in [settings] is 0, outside 1 to 100");
  EXPECT_EQ(setting("q = [0.05, 1.0]"),
            "r.toml:8: 'q' in [settings] must hold values between 0 and 1, both excluded");
  EXPECT_EQ(setting("q = []"), "r.toml:8: 'q' in [settings] is empty; give at least one q-value");
  EXPECT_EQ(setting("map_types = ['DTAVX']"),
            "r.toml:8: 'map_types' in [settings] names 'DTAVX'; did you mean 'DTAV'?");
  EXPECT_EQ(setting("method = 'calibratd'"),
            "r.toml:8: 'method' in [settings] is 'calibratd'; did you mean 'calibrated'?");
  EXPECT_EQ(setting("surrogates = 'many'"),
            "r.toml:8: 'surrogates' in [settings] must be a whole number from 10 to 10000");
  EXPECT_EQ(setting("method = 'plugin'\nnull_draws = 5"),
            "r.toml:9: 'null_draws' in [settings] has no meaning with method \"plugin\", which draws one "
            "surrogate per "
            "voxel; remove it");
}

TEST_F(RequestFile, ASettingOfTheOtherMethodSaysWhatToWriteInstead) {
  const auto setting = [&](const std::string& lines) { return problem(with("[settings]\n" + lines + "\n")); };
  EXPECT_EQ(
      setting("cv_constant = 1"),
      "r.toml:8: 'cv_constant' in [settings] is a choice of method \"plugin\"; write fdr_constant "
      "instead: 1 for independent or positively dependent voxels, ln(voxels) + 0.58 for any dependence, "
      "or nothing for 1.5");
  EXPECT_EQ(setting("fdr_constant = 2\nmethod = 'plugin'"),
            "r.toml:8: 'fdr_constant' in [settings] has no meaning with method \"plugin\"; write cv_constant "
            "instead: 1 for independent or positively dependent voxels, 2 for any dependence");
  EXPECT_EQ(setting("method = 'plugin'\nfwe_draws = 0"),
            "r.toml:9: 'fwe_draws' in [settings] has no meaning with method \"plugin\", which computes no "
            "whole maps of surrogates; remove it");
}

TEST_F(RequestFile, DrawsOfTheFamilyWiseErrorAreSurrogates) {
  const auto draws = [&](const std::string& lines) {
    return parse(with("[settings]\n" + lines + "\n")).settings.fweDraws;
  };
  EXPECT_EQ(draws("surrogates = 2000"), 1000);
  EXPECT_EQ(draws("surrogates = 60"), 60);  // the default gives way
  EXPECT_EQ(draws("surrogates = 60\nfwe_draws = 60"), 60);
  EXPECT_EQ(draws("fwe_draws = 0"), 0);
  EXPECT_EQ(draws("method = 'plugin'"), 0);
  EXPECT_EQ(
      problem(with("[settings]\nsurrogates = 60\nfwe_draws = 61\n")),
      "r.toml:9: 'fwe_draws' in [settings] is 61, more than the 60 surrogates that there are; ask for as "
      "many with 'surrogates', or for fewer draws");
}

TEST_F(RequestFile, QValuesAreSortedAndUnique) {
  EXPECT_EQ(parse(with("[settings]\nq = [0.1, 0.01, 0.1, 0.05]\n")).settings.qValues,
            (std::vector<double>{0.01, 0.05, 0.1}));
}

TEST_F(RequestFile, TheOrderIsANumberOrACriterion) {
  EXPECT_EQ(parse(with("[settings]\norder = 3\n")).settings.order, 3);
  EXPECT_EQ(parse(with("[settings]\norder = 'bic'\n")).settings.orderChoice, OrderChoice::kBic);
  EXPECT_EQ(parse(with("[settings]\norder = 'hqc'\n")).settings.orderChoice, OrderChoice::kHqc);
}

TEST_F(RequestFile, ReferencesComeInFourKinds) {
  const Request request = parse(kRun + kReference +
                                "[[reference]]\nname = 'm'\nmask = 'mask.nii.gz'\n"
                                "[[reference]]\nname = 's'\ncentre_mm = [1, 2.5, -3]\nradius_mm = 4\n"
                                "[[reference]]\nname = 'v'\nvoxels = [[0, 1, 2], [3, 4, 5]]\n"
                                "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = 'all'\n");
  ASSERT_EQ(request.references.size(), 5U);
  EXPECT_EQ(request.references[1].kind, ReferenceKind::kMask);
  EXPECT_EQ(request.references[2].centreMm[1], 2.5);
  EXPECT_EQ(request.references[3].voxels[1], (std::array<int, 3>{3, 4, 5}));
  EXPECT_TRUE(request.references[4].allLabels);
}

TEST_F(RequestFile, ContradictoryReferencesAreRefused) {
  const auto reference = [&](const std::string& lines) {
    return problem(kRun + "[[reference]]\n" + lines + "\n");
  };
  EXPECT_EQ(reference("name = 'x'"),
            "r.toml:4: [[reference]] needs one of 'label_image', 'mask', 'centre_mm', 'voxels'");
  EXPECT_EQ(reference("name = 'x'\nmask = 'mask.nii.gz'\nvoxels = [[1,2,3]]"),
            "r.toml:7: 'voxels' in [[reference]] and 'mask' exclude each other");
  EXPECT_EQ(reference("mask = 'mask.nii.gz'"), "r.toml:4: [[reference]] needs a 'name'");
  EXPECT_EQ(reference("name = 'x'\ncentre_mm = [1, 2]\nradius_mm = 3"),
            "r.toml:6: 'centre_mm' in [[reference]] must hold x, y and z in millimetres");
  EXPECT_EQ(reference("name = 'x'\nvoxels = [[1, 2, -3]]"),
            "r.toml:6: 'voxels' in [[reference]] must hold whole numbers from 0");
  EXPECT_EQ(reference("label_image = 'dseg.nii.gz'"),
            "r.toml:4: [[reference]] with 'label_image' needs 'labels': names, indices or \"all\"");
  EXPECT_EQ(reference("name = 'x'\nmask = 'mask.nii.gz'\nradius_mm = 3"),
            "r.toml:7: 'radius_mm' in [[reference]] goes with 'centre_mm' only");
  EXPECT_EQ(reference("name = 'x'\nmask = 'mask.nii.gz'\nprobability = 0.5"),
            "r.toml:7: 'probability' in [[reference]] goes with 'label_image' only");
}

TEST_F(RequestFile, LabelImagesMayBeProbabilityAtlases) {
  EXPECT_EQ(parse(with("probability = 0.25\n")).references[0].probability, 0.25);
  EXPECT_EQ(parse(with("")).references[0].probability, 0);
  for (const std::string wrong : {"0", "1.01", "-0.5"}) {
    EXPECT_EQ(problem(with("probability = " + wrong + "\n")),
              "r.toml:7: 'probability' in [[reference]] is " + wrong + ", outside 0.001 to 1");
  }
}

TEST_F(RequestFile, ConditionsTakeIntervalsPerRun) {
  const std::string second = "[[run]]\nname = 'b'\nbold = 'bold.nii.gz'\n";
  const Request request = parse(kRun + second + kReference +
                                "[[condition]]\nname = 'c'\nintervals = { b = [[1, 5], [9, 20]] }\n");
  ASSERT_EQ(request.conditions[0].parts.size(), 1U);
  EXPECT_EQ(request.conditions[0].parts[0].source, "b");
  EXPECT_EQ(request.conditions[0].parts[0].typed, (std::vector<VolumeRange>{{1, 5}, {9, 20}}));
}

TEST_F(RequestFile, ConditionsTakeSourceAndTargetPairs) {
  const std::string second = "[[run]]\nname = 'b'\nbold = 'bold.nii.gz'\n";
  const Request request = parse(kRun + second + kReference +
                                "[[condition]]\nname = 'c'\nwhole_run = true\npairs = [['a', 'b']]\n");
  EXPECT_EQ(request.conditions[0].parts[0].source, "a");
  EXPECT_EQ(request.conditions[0].parts[0].target, "b");
}

TEST_F(RequestFile, BadConditionsAreRefused) {
  const auto condition = [&](const std::string& lines) {
    return problem(with("[[condition]]\nname = 'c'\n" + lines + "\n"));
  };
  EXPECT_EQ(
      condition(""),
      "r.toml:7: [[condition]] 'c' needs exactly one of 'whole_run = true', 'intervals', 'trial_types'");
  EXPECT_EQ(condition("intervals = [[5, 4]]"),
            "r.toml:9: 'intervals' in [[condition]] holds an interval that ends before it begins");
  EXPECT_EQ(condition("intervals = [[0, 4]]"),
            "r.toml:9: 'intervals' in [[condition]] must hold volume numbers from 1");
  EXPECT_EQ(condition("whole_run = true\nruns = ['aa']"),
            "r.toml:10: 'runs' in [[condition]] names no run of this request: 'aa'; did you mean 'a'?");
  EXPECT_EQ(condition("trial_types = ['face']"),
            "r.toml:7: condition 'c' uses 'trial_types', but run 'a' has no 'events'");
}

TEST_F(RequestFile, NamesMustBeUnique) {
  EXPECT_EQ(problem(kRun + kRun + kReference),
            "r.toml:4: two runs are named 'a'; give each a name of its own");
}

TEST_F(RequestFile, RegressionNeedsATable) {
  EXPECT_EQ(problem(kRun + "regress = '6motion'\n" + kReference),
            "r.toml:1: run 'a' asks for regression, censoring or automatic dropping, which need a table: "
            "add 'confounds = \"...tsv\"'");
  EXPECT_EQ(
      parse(kRun + "regress = '6motion'\nconfounds = 'confounds.tsv'\ndrop_volumes = 'auto'\n" + kReference)
          .runs[0]
          .dropVolumes,
      kDropFromConfounds);
}

TEST_F(RequestFile, AnEmptyRequestSaysWhatIsMissing) {
  EXPECT_EQ(problem(""), "r.toml: no [[run]]: name at least one image of a run");
  EXPECT_EQ(problem(kRun), "r.toml: no [[reference]]: name at least one reference region");
}

}  // namespace
}  // namespace study
