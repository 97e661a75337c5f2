#include "formats/table.h"

#include <gtest/gtest.h>

#include "tests/support/message_of.h"

namespace {

using formats::Table;

Table parse(const std::string& text) {
  return Table::parse(text, "t.tsv");
}

TEST(Table, ReadsTabs) {
  const Table table = parse("onset\tduration\n1.5\tn/a\n-2e1\t3\n");
  ASSERT_EQ(table.rows(), 2U);
  EXPECT_EQ(table.columns(), (std::vector<std::string>{"onset", "duration"}));
  EXPECT_EQ(table.number(0, 0), 1.5);
  EXPECT_EQ(table.number(0, 1), std::nullopt);
  EXPECT_EQ(table.number(1, 0), -20.0);
}

TEST(Table, ReadsByteOrderMarkAndCarriageReturns) {
  const Table table = parse("\xEF\xBB\xBFindex\tname\r\n1\tA\r\n");
  EXPECT_EQ(table.find("index"), 0U);
  EXPECT_EQ(table.cell(0, 1), "A");
}

TEST(Table, ReadsQuotedCellsAndHeaders) {
  const Table table = parse("\"index\",\"name\"\n1,\"A, the \"\"first\"\"\"\n2,\"two\nlines\"\n");
  EXPECT_EQ(table.columns(), (std::vector<std::string>{"index", "name"}));
  EXPECT_EQ(table.cell(0, 1), "A, the \"first\"");
  EXPECT_EQ(table.cell(1, 1), "two\nlines");
}

TEST(Table, ReadsSemicolonsAndRunsOfBlanks) {
  EXPECT_EQ(parse("a;b\n1;2").cell(0, 1), "2");
  const Table blanks = parse("condition  first_volume   last_volume\n  faces   1   20 \nhouses 21 40");
  EXPECT_EQ(blanks.cell(0, 0), "faces");
  EXPECT_EQ(blanks.integer(0, 2), 20);
  EXPECT_EQ(blanks.integer(1, 2), 40);
}

TEST(Table, FindsColumnsInAnyCase) {
  EXPECT_EQ(parse("Onset\tTRIAL_TYPE\n").find("trial_type"), 1U);
  EXPECT_EQ(reasonOf([] { (void)parse("a\tb\n").require("onset"); }),
            "there is no column \"onset\" among: a, b. Name the columns in the first line.");
}

TEST(Table, PassesOverBlankLinesButCountsThem) {
  EXPECT_EQ(parse("a\tb\n\n1\t2\n\n").rows(), 1U);
  EXPECT_EQ(reasonOf([] { (void)parse("a\tb\n\n1\t2\n\n3\n"); }),
            "line 5: 1 cells under 2 column names. Give every column a value, n/a where there is none.");
}

TEST(Table, RefusesTooManyCells) {
  EXPECT_EQ(reasonOf([] { (void)parse("a\tb\n1\t2\t3\n"); }),
            "line 2: 3 cells under 2 column names. Give every column a value, n/a where there is none.");
}

TEST(Table, RefusesWhatIsNoNumber) {
  const Table table = parse("a\n12x\n1.5\nn/a\nnan\n");
  EXPECT_EQ(reasonOf([&] { (void)table.number(0, 0); }),
            "line 2: \"12x\" under a is no number. Write a number, or n/a.");
  EXPECT_EQ(reasonOf([&] { (void)table.integer(1, 0); }),
            "line 3: \"1.5\" under a is no whole number. Write a whole number.");
  EXPECT_EQ(reasonOf([&] { (void)table.integer(2, 0); }),
            "line 4: \"n/a\" under a is no whole number. Write a whole number.");
  EXPECT_NE(reasonOf([&] { (void)table.number(3, 0); }), "");
}

TEST(Table, RefusesEmptyAndBinaryFiles) {
  EXPECT_EQ(reasonOf([] { (void)parse("\n \n"); }),
            "the table is empty. Give a table whose first line names the columns.");
  EXPECT_EQ(reasonOf([] { (void)parse(std::string("a\0b", 3)); }),
            "it is no text file. Give a table of tab-separated text.");
}

TEST(Table, RefusesAnOpenQuotationMark) {
  EXPECT_EQ(reasonOf([] { (void)parse("a\tb\n1\t\"open\n"); }),
            "line 2: a quotation mark is not closed. Close it.");
}

TEST(TsvCell, IsQuotedWhereItHasToBe) {
  EXPECT_EQ(formats::tsvCell("a b"), "a b");
  EXPECT_EQ(formats::tsvCell("a\tb \"c\""), "\"a\tb \"\"c\"\"\"");
}

}  // namespace
