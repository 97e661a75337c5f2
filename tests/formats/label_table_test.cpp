#include "formats/label_table.h"

#include <gtest/gtest.h>

#include "tests/fakes/vtc_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

formats::LabelTable read(const std::string& text) {
  const Scratch folder;
  folder.write("t.tsv", text);
  return formats::readLabelTable(folder.file("t.tsv"));
}

TEST(LabelTable, ReadsIndexNameAndColor) {
  const auto table = read("index\tname\tcolor\n1\tHIP-rh\t#abf355\n7\tAMY\tn/a\n");
  ASSERT_EQ(table.labels.size(), 2U);
  EXPECT_EQ(table.labels[0].color, 0xabf355U);
  EXPECT_FALSE(table.labels[1].color.has_value());
  EXPECT_EQ(table.find(7)->name, "AMY");
  EXPECT_EQ(table.find("HIP-rh")->index, 1);
  EXPECT_EQ(table.find(2), nullptr);
  EXPECT_EQ(table.nameOf(2), "label-2");
}

TEST(LabelTable, LeavesOutTheBackground) {
  const auto table = read("index\tname\n0\tUnknown\n1\tA\n");
  ASSERT_EQ(table.labels.size(), 1U);
  EXPECT_EQ(table.labels[0].name, "A");
}

TEST(LabelTable, ReadsQuotedCommaSeparatedHeaders) {
  EXPECT_EQ(read("\"index\",\"name\"\n3,\"Gyrus, left\"\n").find(3)->name, "Gyrus, left");
}

TEST(LabelTable, RefusesMistakes) {
  EXPECT_EQ(reasonOf([] { (void)read("index\tname\n1\tA\n1\tB\n"); }),
            "line 3: the index 1 comes twice. Give every region its own index.");
  EXPECT_EQ(reasonOf([] { (void)read("index\tname\n1\t\n"); }), "line 2: a region has no name. Name it.");
  EXPECT_EQ(reasonOf([] { (void)read("index\tname\tcolor\n1\tA\tred\n"); }),
            "line 2: \"red\" is no color. Write six hexadecimal digits, such as #ff8800.");
}

TEST(LabelTable, ComesBackAsWritten) {
  const Scratch folder;
  formats::LabelTable table;
  table.labels = {{2, "A \"quoted\"", 0x0102ffU}, {5, "B", std::nullopt}};
  formats::writeLabelTable(folder.file("t.tsv"), table);
  const auto again = formats::readLabelTable(folder.file("t.tsv"));
  ASSERT_EQ(again.labels.size(), 2U);
  EXPECT_EQ(again.labels[0].name, "A \"quoted\"");
  EXPECT_EQ(again.labels[0].color, 0x0102ffU);
  EXPECT_FALSE(again.labels[1].color.has_value());
}

TEST(LabelTable, IsFoundBesideItsImage) {
  const Scratch folder;
  folder.write("a_dseg.tsv", "index\tname\n");
  EXPECT_EQ(formats::labelTableBeside(folder.file("a_dseg.nii.gz")), folder.file("a_dseg.tsv"));
  EXPECT_EQ(formats::labelTableBeside(folder.file("a_dseg.nii")), folder.file("a_dseg.tsv"));
  EXPECT_EQ(formats::labelTableBeside(folder.file("b_dseg.nii")), "");
}

}  // namespace
