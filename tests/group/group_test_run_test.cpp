// Tests over participants, from records and images to files.
#include "group/group_test_run.h"

#include <fmt/core.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "formats/table.h"
#include "group/group_names.h"
#include "group/group_tests.h"
#include "request/problem.h"
#include "results/record_json.h"
#include "tests/support/message_of.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

constexpr io::GridSize kGrid{8, 7, 6};
constexpr std::size_t kPlanted = 8 * 7 * 3 + 8 * 3 + 4;  // voxel (4, 3, 3)

// Maps of dTAV of two conditions; participants whose number is even have an effect at the planted voxel and
// its neighbours along x.
class GroupTests : public ::testing::Test {
 protected:
  GroupTests() {
    for (int i = 1; i <= 10; ++i) addParticipant(i);
    scratch_.write("p.tsv", table());
  }

  static std::string table() {
    std::string text = "participant_id\tgroup\tage\n";
    for (int i = 1; i <= 10; ++i)
      text += fmt::format("sub-{:02}\t{}\t{}\n", i, i % 2 == 0 ? "even" : "odd", 20 + i * i % 7);
    return text;
  }

  static formats::ImageHeader header() {
    formats::ImageHeader header;
    header.size = kGrid;
    header.affine.at(0, 0) = header.affine.at(1, 1) = header.affine.at(2, 2) = 2;
    header.affine.at(0, 3) = -8;
    header.sformCode = 4;
    return header;
  }

  void addParticipant(int number, float noise = 1) {
    const std::string label = fmt::format("{:02}", number), folder = fmt::format("sub-{}/func", label);
    Record record = sample_result::record();
    record.conditions.resize(2);
    record.key = "key" + label;
    for (std::size_t c = 0; c < 2; ++c) {
      ConditionRecord& condition = record.conditions[c];
      condition.name = c == 0 ? "faces" : "houses";
      condition.direction = {};
      condition.maps.resize(1);
      MapResult& map = condition.maps[0];
      map = {};
      map.type = tav::DTAV;
      map.file = fmt::format("sub-{}_seed-V1_{}_dTAV.nii.gz", label, condition.name);
      condition.statusFile = fmt::format("sub-{}_seed-V1_{}_status.nii.gz", label, condition.name);
      fs::create_directories(scratch_.folder() / folder);
      writeMap(fs::path(folder) / map.file, number, c == 0, noise);
      writeStatus(fs::path(folder) / condition.statusFile, number);
    }
    scratch_.write(fmt::format("{}/sub-{}_task-x_seed-V1_tavmap.json", folder, label), recordText(record));
  }

  void writeMap(const fs::path& file, int number, bool isFaces, float deviation) {
    std::mt19937 random(static_cast<unsigned>(2 * number + (isFaces ? 1 : 0)));
    std::normal_distribution<float> noise(0, deviation);
    formats::Image3D map{header(), std::vector<float>(kGrid.voxels())};
    for (float& value : map.values) value = noise(random);
    if (number % 2 == 0 && isFaces)
      for (int step = -1; step <= 1; ++step)
        map.values[static_cast<std::size_t>(static_cast<int>(kPlanted) + step)] += 12;
    formats::writeImage((scratch_.folder() / file).string(), map);
  }

  // Voxel 0 is outside the first participant's mask, voxel 1 outside everybody's.
  void writeStatus(const fs::path& file, int number) {
    formats::LabelImage status{header(), std::vector<std::int32_t>(kGrid.voxels(), 1)};
    status.labels[0] = number == 1 ? 0 : 1;
    status.labels[1] = 0;
    formats::writeLabelImage((scratch_.folder() / file).string(), status);
  }

  GroupTestOutcome run(const GroupQuestion& question, bool force = false) {
    const GroupResult group = readGroup(scratch_.folder(), {scratch_.folder(), {}, Outdated::kRefused});
    const std::vector<GroupCell> cells = cellsOf(group, question);
    EXPECT_EQ(cells.size(), 1U);
    return runGroupTest(question, cells.at(0), inference_, Participants::read(scratch_.folder() / "p.tsv"),
                        {scratch_.folder(), "9.9", 2, force});
  }

  static GroupQuestion asked(const std::string& contrast) {
    GroupQuestion question;
    question.maps = {"dTAV"};
    question.name = "t";
    question.contrast = contrast;
    question.conditions = {"faces"};
    return question;
  }

  formats::Image3D image(const GroupTestRecord& record, const char* what) const {
    return formats::readImage((scratch_.folder() / kGroupFolder / record.image(what)).string());
  }

  // One value per participant, from the files.
  std::vector<double> valuesAt(std::size_t voxel, const char* condition) const {
    std::vector<double> values;
    for (int i = 1; i <= 10; ++i) {
      const std::string file =
          fmt::format("sub-{0:02}/func/sub-{0:02}_seed-V1_{1}_dTAV.nii.gz", i, condition);
      values.push_back(
          static_cast<double>(formats::readImage((scratch_.folder() / file).string()).values[voxel]));
    }
    return values;
  }

  Scratch scratch_;
  GroupInference inference_{.shuffles = 200};
};

double meanOf(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

double squaresOf(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += (value - meanOf(values)) * (value - meanOf(values));
  return sum;
}

TEST_F(GroupTests, TOfAMeanIsThatOfTheTextbook) {
  const GroupTestRecord record = run(asked("mean")).record;
  const formats::Image3D t = image(record, group_image::kT), effect = image(record, group_image::kEffect);
  for (const std::size_t voxel : {std::size_t{5}, kPlanted, std::size_t{300}}) {
    const std::vector<double> values = valuesAt(voxel, "faces");
    EXPECT_NEAR(static_cast<double>(effect.values[voxel]), meanOf(values), 1e-5);
    EXPECT_NEAR(static_cast<double>(t.values[voxel]), meanOf(values) / std::sqrt(squaresOf(values) / 9 / 10),
                1e-4);
  }
}

TEST_F(GroupTests, TOfTwoGroupsIsThatOfTheTextbook) {
  const GroupTestRecord record = run(asked("even - odd")).record;
  const formats::Image3D t = image(record, group_image::kT);
  std::vector<double> even, odd;
  const std::vector<double> values = valuesAt(kPlanted, "faces");
  for (std::size_t i = 0; i < values.size(); ++i) (i % 2 == 1 ? even : odd).push_back(values[i]);
  const double pooled = (squaresOf(even) + squaresOf(odd)) / 8;
  EXPECT_NEAR(static_cast<double>(t.values[kPlanted]),
              (meanOf(even) - meanOf(odd)) / std::sqrt(pooled * 2 / 5), 1e-4);
  EXPECT_EQ(record.peaks.at(0).voxel[1], 3) << "one of the three planted voxels";
  EXPECT_EQ(record.peaks.at(0).voxel[2], 3);
  EXPECT_EQ(record.byTfce.negative, 0U);
  EXPECT_GE(record.byTfce.positive, 1U);
}

TEST_F(GroupTests, GroupsThatDoNotVaryAlikeAreWarnedAbout) {
  const auto warnings = [&] {
    return fmt::format("{}", fmt::join(run(asked("odd - even"), true).record.warnings, "\n"));
  };
  EXPECT_EQ(warnings().find("do not vary alike"), std::string::npos) << warnings();
  for (int i = 1; i <= 10; i += 2) addParticipant(i, 4);
  EXPECT_NE(warnings().find("do not vary alike (standard deviation of the first is"), std::string::npos)
      << warnings();
}

TEST_F(GroupTests, APairedDifferenceIsTakenVoxelByVoxel) {
  GroupQuestion question = asked("even - odd");
  question.conditions.clear();
  question.within = "faces - houses";
  const GroupTestRecord record = run(question).record;
  EXPECT_EQ(record.condition, "faces - houses");
  EXPECT_EQ(record.rows.at(0).images.size(), 2U);
  const std::vector<double> faces = valuesAt(kPlanted, "faces"), houses = valuesAt(kPlanted, "houses");
  double difference = 0;
  for (std::size_t i = 0; i < 10; ++i) difference += (i % 2 == 1 ? 1 : -1) * (faces[i] - houses[i]) / 5;
  EXPECT_NEAR(static_cast<double>(image(record, group_image::kEffect).values[kPlanted]), difference, 1e-4);
}

TEST_F(GroupTests, VoxelsNeedAsManyParticipantsAsAreAskedFor) {
  GroupTestRecord record = run(asked("mean")).record;
  EXPECT_EQ(image(record, group_image::kCount).values[0], 9);
  EXPECT_EQ(image(record, group_image::kCount).values[1], 0);
  EXPECT_TRUE(std::isnan(image(record, group_image::kT).values[0]));
  inference_.smallestShare = 0.9;
  record = run(asked("mean")).record;
  EXPECT_FALSE(std::isnan(image(record, group_image::kT).values[0]));
  EXPECT_TRUE(std::isnan(image(record, group_image::kT).values[1]));
}

TEST_F(GroupTests, PeaksHaveEveryParticipantsValueAndInfluence) {
  const GroupTestRecord record = run(asked("even - odd")).record;
  const GroupPeak& peak = record.peaks.at(0);
  ASSERT_EQ(peak.values.size(), 10U);
  const std::vector<double> values = valuesAt(kGrid.index(peak.voxel), "faces");
  for (std::size_t i = 0; i < 10; ++i) EXPECT_NEAR(peak.values[i].value, values[i], 1e-5);
  for (const GroupValue& value : peak.values) EXPECT_GT(value.tWithout, 3) << value.participant;
  const auto table = formats::Table::read((scratch_.folder() / kGroupFolder / record.valueTable).string());
  EXPECT_EQ(table.rows() % 10, 0U);
  EXPECT_EQ(table.cell(1, table.require("group")), "even");
}

TEST_F(GroupTests, TheRecordReadsBackEqual) {
  const GroupTestOutcome outcome = run(asked("even - odd"));
  const GroupTestRecord back = readGroupRecord(scratch_.folder() / outcome.file);
  EXPECT_EQ(groupRecordText(back), groupRecordText(outcome.record));
  for (const auto& [name, size] : back.files)
    EXPECT_EQ(fs::file_size(scratch_.folder() / kGroupFolder / name), size);
}

TEST_F(GroupTests, ARepeatedTestIsKeptUntilSomethingChanges) {
  EXPECT_FALSE(run(asked("mean")).isKept);
  EXPECT_TRUE(run(asked("mean")).isKept);
  EXPECT_FALSE(run(asked("mean"), true).isKept) << "forced";
  inference_.seed = 2;
  EXPECT_FALSE(run(asked("mean")).isKept) << "another seed";
  EXPECT_TRUE(run(asked("mean")).isKept);
  const GroupTestRecord record = run(asked("mean")).record;
  fs::resize_file(scratch_.folder() / kGroupFolder / record.image(group_image::kT), 10);
  EXPECT_FALSE(run(asked("mean")).isKept) << "a file is cut";
  GroupQuestion fewer = asked("mean");
  fewer.leftOut = {"03"};
  EXPECT_FALSE(run(fewer).isKept) << "other participants";
}

TEST_F(GroupTests, ResultsDoNotDependOnThreads) {
  const GroupQuestion question = asked("even - odd");
  const auto cells =
      cellsOf(readGroup(scratch_.folder(), {scratch_.folder(), {}, Outdated::kRefused}), question);
  const Participants participants = Participants::read(scratch_.folder() / "p.tsv");
  std::string texts[2];
  for (const int threads : {1, 3}) {
    const GroupTestOutcome outcome = runGroupTest(question, cells.at(0), inference_, participants,
                                                  {scratch_.folder(), "9.9", threads, true});
    texts[threads / 3] = groupRecordText(outcome.record);
  }
  EXPECT_EQ(texts[0], texts[1]);
}

TEST_F(GroupTests, OtherGridsAreRefusedWithARemedy) {
  formats::Image3D map{header(), std::vector<float>(kGrid.voxels(), 1)};
  map.header.affine.at(0, 3) = 40;
  formats::writeImage((scratch_.folder() / "sub-04/func/sub-04_seed-V1_faces_dTAV.nii.gz").string(), map);
  const std::string message = messageOf<InputError>([&] { return run(asked("mean")); });
  EXPECT_NE(message.find("sub-04"), std::string::npos) << message;
  EXPECT_NE(message.find("--space"), std::string::npos) << message;
}

TEST_F(GroupTests, NamesThatNoRecordHasAreRefused) {
  const GroupResult group = readGroup(scratch_.folder(), {scratch_.folder(), {}, Outdated::kRefused});
  const auto problem = [&](GroupQuestion question) {
    return messageOf<InputError>([&] { return cellsOf(group, question); });
  };
  GroupQuestion question = asked("mean");
  question.conditions = {"face"};
  EXPECT_NE(problem(question).find("did you mean 'faces'"), std::string::npos);
  question = asked("mean");
  question.references = {"V2"};
  EXPECT_NE(problem(question).find("'V2'"), std::string::npos);
  question = asked("mean");
  question.within = "faces - scenes";
  EXPECT_NE(problem(question).find("'scenes'"), std::string::npos);
  question = asked("mean");
  question.maps = {"dTAVIT"};
  EXPECT_NE(problem(question).find("not of 'dTAVIT'"), std::string::npos);
}

TEST_F(GroupTests, MeasuresWithoutZAreRefused) {
  Record record = sample_result::record();
  record.conditions[0].maps.resize(1);
  record.conditions[0].maps[0].type = tav::REF2VOX;
  record.conditions[0].maps[0].zFile = "";
  scratch_.write("sub-11/func/sub-11_task-x_seed-V1_tavmap.json", recordText(record));
  const GroupResult group = readGroup(scratch_.folder(), {scratch_.folder(), {}, Outdated::kRefused});
  GroupQuestion question = asked("mean");
  question.conditions.clear();
  question.maps = {"Ref2Vox"};
  EXPECT_NE(messageOf<InputError>([&] { return cellsOf(group, question); }).find("null_draws of 2 or more"),
            std::string::npos);
}

}  // namespace
}  // namespace study
