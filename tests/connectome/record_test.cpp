#include <gtest/gtest.h>

#include <cmath>

#include "connectome/connectome_record.h"
#include "connectome/result_files.h"
#include "formats/file_error.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using connectome::Record;

Record sample() {
  Record record;
  record.key = "k";
  record.title = "r.toml";
  record.madeFrom = {{"seed", "5"}, {"model order", "1"}};
  record.nodes = 3;
  record.givenSeries = {"global signal"};
  record.q = {0.05};
  record.surrogates = 1000;
  record.warnings = {"short"};
  connectome::ConditionRecord condition;
  condition.name = "whole";
  condition.runs = {"run1"};
  condition.measures = {{"Influence", 6, {2}, 1, 0.5, "a.tsv", "b.tsv", "c.tsv", "d.tsv"}};
  condition.pairsTested = 2;
  record.conditions = {condition};
  record.files = {{"a.tsv", 12}};
  return record;
}

TEST(ConnectomeRecord, IsReadAsItWasWritten) {
  const Scratch scratch;
  const Record written = sample(),
               read = connectome::readRecordFile(scratch.write("r.json", recordText(written)));
  EXPECT_EQ(recordText(read), recordText(written));
  EXPECT_EQ(read.madeFrom, written.madeFrom);
  EXPECT_EQ(read.conditions.at(0).measures.at(0).passing, (std::vector<std::size_t>{2}));
  EXPECT_EQ(read.files, written.files);
}

TEST(ConnectomeRecord, ThatWasCutOffSaysWhere) {
  const Scratch scratch;
  const std::string text = recordText(sample());
  EXPECT_THROW((void)connectome::readRecordFile(scratch.write("r.json", text.substr(0, text.size() / 2))),
               formats::FileError);
  const auto message =
      messageOf<formats::FileError>([&] { (void)connectome::readRecordFile(scratch.write("s.json", "{}")); });
  EXPECT_NE(message.find("Title"), std::string::npos) << message;
}

TEST(MatrixFile, IsSquareWithNamesAboveIt) {
  const Scratch scratch;
  std::vector<std::string> names;
  const auto matrix =
      connectome::readMatrixFile(scratch.write("m.tsv", "A\tB\nn/a\t0.5\n0.25\tn/a\n"), names);
  EXPECT_EQ(names, (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(matrix.at(0, 1), 0.5);
  EXPECT_EQ(matrix.at(1, 0), 0.25);
  EXPECT_TRUE(std::isnan(matrix.at(0, 0)));
}

TEST(MatrixFile, ThatIsNotSquareOrHasWordsIsRefused) {
  const Scratch scratch;
  std::vector<std::string> names;
  const auto read = [&](const char* text) {
    return messageOf<formats::FileError>(
        [&] { (void)connectome::readMatrixFile(scratch.write("m.tsv", text), names); });
  };
  EXPECT_NE(read("A\tB\n1\t2\n").find("1 rows for 2 columns"), std::string::npos);
  EXPECT_NE(read("A\tB\n1\t2\n3\tx\n").find("x"), std::string::npos);
}

}  // namespace
