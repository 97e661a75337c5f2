#include "simulation/group_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "formats/nifti.h"
#include "simulation/bids_tree.h"
#include "simulation/block_design.h"
#include "simulation/group_metadata.h"
#include "tests/support/scratch.h"

namespace {

using nlohmann::json;
using simulation::GroupDesign;
using simulation::InfluenceModel;
using simulation::Person;

constexpr std::uint64_t kSeed = 3;

double followOf(const InfluenceModel& model, const std::string& region) {
  for (const simulation::RegionModel& one : model.regions)
    if (one.name == region) return one.follow;
  ADD_FAILURE() << region;
  return std::nan("");
}

simulation::DataSetOptions tinyOptions() {
  simulation::DataSetOptions options;
  options.head.grid = {13, 14, 12};
  options.volumes = 80;
  options.seed = kSeed;
  return options;
}

std::string seriesOf(const Scratch& folder, const std::string& subject, int run) {
  return folder.file("derivatives/preprocessed/" + subject + "/func/" + subject + "_task-blocks_run-" +
                     std::to_string(run) + "_space-MNI152NLin2009cAsym_desc-preproc_bold.nii.gz");
}

double meanDisplacement(const Scratch& folder, const std::string& subject) {
  std::istringstream table(contentOf(folder.file("derivatives/preprocessed/" + subject + "/func/" + subject +
                                                 "_task-blocks_run-1_desc-confounds_timeseries.tsv")));
  std::string line;
  double sum = 0, rows = 0;
  while (std::getline(table, line)) {
    const std::string first = line.substr(0, line.find('\t'));
    if (first.find_first_not_of("0123456789.e-") != std::string::npos) continue;  // header, n/a
    sum += std::stod(first);
    ++rows;
  }
  return sum / rows;
}

TEST(GroupDesign, GroupsDifferInOneRegionConditionsInAnotherAndNothingElseDiffers) {
  const GroupDesign design;
  const InfluenceModel plain = simulation::plantedModel(1);
  for (std::size_t group : {0U, 1U}) {
    for (std::size_t condition : {0U, 1U}) {
      const InfluenceModel model = simulation::modelOf(design, 1, group, condition);
      ASSERT_EQ(model.regions.size(), plain.regions.size());
      EXPECT_DOUBLE_EQ(followOf(model, "Driven-A"), 0.6 * (group == 0 ? 1.4 : 0.6));
      EXPECT_DOUBLE_EQ(followOf(model, "Driven-B"), 0.45 * (condition == 0 ? 1.4 : 0.6));
      for (std::size_t k = 0; k < plain.regions.size(); ++k) {
        EXPECT_EQ(model.regions[k].drive, plain.regions[k].drive);
        EXPECT_EQ(model.regions[k].share, plain.regions[k].share);
      }
    }
  }
}

TEST(GroupDesign, EffectsOfNothingLeaveTheModelAsItIs) {
  GroupDesign design;
  design.groupEffect = design.conditionEffect = 0;
  for (std::size_t group : {0U, 1U})
    for (const char* region : {"Driven-A", "Driven-B"})
      EXPECT_EQ(followOf(simulation::modelOf(design, 0.7, group, 1), region),
                followOf(simulation::plantedModel(0.7), region));
}

TEST(GroupDesign, GroupsAndSexesAreBalancedAndStrengthsDiffer) {
  const std::vector<Person> people = simulation::peopleOf({}, kSeed, 1);
  ASSERT_EQ(people.size(), 16U);
  std::map<std::string, int> counts;
  std::set<double> strengths;
  for (const Person& person : people) {
    ++counts[person.group + person.sex];
    strengths.insert(person.strength);
    EXPECT_NEAR(person.strength, 1, 0.2);
    EXPECT_GE(person.age, 20);
    EXPECT_LE(person.age, 50);
  }
  EXPECT_EQ(counts,
            (std::map<std::string, int>{{"controlF", 4}, {"controlM", 4}, {"patientF", 4}, {"patientM", 4}}));
  EXPECT_EQ(strengths.size(), 16U);
}

TEST(GroupDesign, WithoutSpreadEverybodyHasTheStrengthAskedFor) {
  for (const Person& person : simulation::peopleOf({.spread = 0}, kSeed, 0.8))
    EXPECT_DOUBLE_EQ(person.strength, 0.8);
}

TEST(GroupDesign, PatientsMoveMoreAndTheLastOneIsSpoilt) {
  const std::vector<Person> people = simulation::peopleOf({.participants = 40}, kSeed, 1);
  double motion[2] = {0, 0};
  for (std::size_t i = 0; i + 1 < people.size(); ++i) {
    motion[i % 2] += people[i].motion;
    EXPECT_EQ(people[i].spoilt, simulation::Spoilt::kNot);
    EXPECT_LT(people[i].motion, 2);
  }
  EXPECT_LT(motion[0] / 20, motion[1] / 19);
  EXPECT_EQ(people.back().spoilt, simulation::Spoilt::kByMotion);
  EXPECT_EQ(people.back().motion, 15);
}

TEST(GroupDesign, ModelOfAConditionHoldsInItsBlocksAlone) {
  const std::vector<Person> people = simulation::peopleOf({}, kSeed, 1);
  const formats::Protocol blocks = simulation::blockDesign(1, 80);  // faces 11 to 30, houses 41 to 60
  const auto follow = [&](int volume) {
    return followOf(simulation::modelAt(people[0], blocks, volume), "Driven-B") / (0.45 * people[0].strength);
  };
  EXPECT_DOUBLE_EQ(follow(10), 1);
  EXPECT_DOUBLE_EQ(follow(11), 1.4);
  EXPECT_DOUBLE_EQ(follow(30), 1.4);
  EXPECT_DOUBLE_EQ(follow(31), 1);
  EXPECT_DOUBLE_EQ(follow(41), 0.6);
  EXPECT_DOUBLE_EQ(follow(61), 1);
}

TEST(GroupDesign, RefusesWhatCannotBeSimulated) {
  EXPECT_EQ(simulation::problemWith(GroupDesign{}), "");
  EXPECT_EQ(simulation::problemWith({.groupEffect = 1.01}), "an effect must be from 0 to 1");
  EXPECT_EQ(simulation::problemWith({.conditionEffect = std::nan("")}), "an effect must be from 0 to 1");
  EXPECT_EQ(simulation::problemWith({.spread = 0.31}), "the spread must be from 0 to 0.3");
  EXPECT_EQ(simulation::problemWith({.participants = 3}),
            "a study of two groups needs 4 participants or more");
}

struct GroupStudyTree : testing::Test {
  static const Scratch& tree() {
    static const Scratch folder;
    static const bool written =
        (simulation::writeGroupStudy(folder.path(), tinyOptions(), {.participants = 4}), true);
    EXPECT_TRUE(written);
    return folder;
  }
};

TEST_F(GroupStudyTree, ParticipantsTableSaysGroupAgeAndSex) {
  const std::string table = contentOf(tree().file("participants.tsv"));
  EXPECT_EQ(table, simulation::groupParticipantsTable(simulation::peopleOf({.participants = 4}, kSeed, 1)));
  EXPECT_TRUE(table.starts_with("participant_id\tgroup\tage\tsex\nsub-01\tcontrol\t")) << table;
  EXPECT_EQ(json::parse(contentOf(tree().file("participants.json"))).size(), 3U);
}

TEST_F(GroupStudyTree, TruthSaysWhereWhatDiffersAndWhatToExpect) {
  const json truth = json::parse(contentOf(tree().file("derivatives/atlas/study_truth.json")));
  std::map<std::string, std::string> differs;
  for (const json& region : truth["regions"]) differs[region["name"]] = region["differs_by"];
  EXPECT_EQ(differs.size(), 8U);
  for (const auto& [region, by] : differs)
    EXPECT_EQ(by, region == "Driven-A" ? "group" : region == "Driven-B" ? "condition" : "none") << region;
  const json& expected = truth["regions"][0]["expected_measures"];
  EXPECT_GT(expected["control"]["faces"]["ref2vox"], expected["patient"]["faces"]["ref2vox"]);
  EXPECT_EQ(expected["control"]["faces"], expected["control"]["houses"]);
  const json& bySubject = truth["participants"];
  EXPECT_EQ(bySubject.size(), 4U);
  EXPECT_EQ(bySubject[3]["spoilt"], "motion");
  EXPECT_EQ(bySubject[1]["group"], "patient");
}

TEST_F(GroupStudyTree, TheSpoiltParticipantMovesTooMuch) {
  for (const char* subject : {"sub-01", "sub-02", "sub-03"})
    EXPECT_LT(meanDisplacement(tree(), subject), 0.3) << subject;
  EXPECT_GT(meanDisplacement(tree(), "sub-04"), 1);
}

TEST_F(GroupStudyTree, IsTheSameForTheSameSeedWithoutOrWithBadParticipant) {
  const Scratch again, clean;
  simulation::writeGroupStudy(again.path(), tinyOptions(), {.participants = 4});
  EXPECT_EQ(differingFiles(filesBelow(again.folder()), filesBelow(tree().folder())), "");
  simulation::writeGroupStudy(clean.path(), tinyOptions(),
                              {.participants = 4, .last = simulation::Spoilt::kNot});
  EXPECT_EQ(contentOf(seriesOf(clean, "sub-03", 2)), contentOf(seriesOf(tree(), "sub-03", 2)));
  EXPECT_NE(contentOf(seriesOf(clean, "sub-04", 2)), contentOf(seriesOf(tree(), "sub-04", 2)));
}

TEST_F(GroupStudyTree, ACutRunBreaksOffWhileItsBlocksStayPlanned) {
  const Scratch cut;
  simulation::writeGroupStudy(cut.path(), tinyOptions(),
                              {.participants = 4, .last = simulation::Spoilt::kCutShort});
  EXPECT_EQ(formats::readImageHeader(seriesOf(cut, "sub-04", 1)).volumes, 80);
  EXPECT_EQ(formats::readImageHeader(seriesOf(cut, "sub-04", 2)).volumes, 12);
  EXPECT_EQ(formats::readImageHeader(seriesOf(cut, "sub-03", 2)).volumes, 80);
  EXPECT_EQ(contentOf(cut.file("sub-04/func/sub-04_task-blocks_run-2_events.tsv")),
            simulation::eventsTable(simulation::blockDesign(2, 80), 2000));
}

// The air around the head, where no effect and no motion reaches.
TEST_F(GroupStudyTree, DrawsItsNoiseAsEveryTree) {
  const Scratch plain;
  simulation::writeBidsTree(plain.path(), tinyOptions(), 1);
  const auto air = [](const Scratch& folder) {
    const std::vector<float> values = formats::readVolume(seriesOf(folder, "sub-01", 1), 0).values;
    return std::vector<float>(values.begin(), values.begin() + 20);
  };
  EXPECT_EQ(air(plain), air(tree()));
}

}  // namespace
