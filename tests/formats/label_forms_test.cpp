// The forms in which label tables come.
#include <gtest/gtest.h>

#include "formats/label_table.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

formats::LabelTable parse(const std::string& text) {
  return formats::parseLabelTable(text, "t.txt");
}

std::string refusal(const std::string& text) {
  return reasonOf([&] { (void)parse(text); });
}

void expectLabel(const formats::Label& label, int index, const std::string& name,
                 std::optional<std::uint32_t> color) {
  EXPECT_EQ(label.index, index);
  EXPECT_EQ(label.name, name);
  EXPECT_EQ(label.color, color);
}

const std::string kXmlHead = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<atlas version=\"1.0\">\n";
const std::string kXmlLabels =
    "<data>\n<label index=\"0\" x=\"48\" y=\"94\" z=\"35\">Frontal Pole</label>\n"
    "<label index=\"1\" x=\"25\" y=\"70\" z=\"32\">\n  Insular  Cortex </label>\n</data>\n</atlas>\n";

TEST(LabelForms, ColumnsMayHaveTheNamesThatOthersGiveThem) {
  expectLabel(parse("ROI_id,ROI_name\n4,V1\n").labels.at(0), 4, "V1", std::nullopt);
  expectLabel(parse("roi_index\troi_label\n4\tV1\n").labels.at(0), 4, "V1", std::nullopt);
  expectLabel(parse("index\tlabel\n4\tV1\n").labels.at(0), 4, "V1", std::nullopt);
  expectLabel(parse("label\tname\n4\tV1\n").labels.at(0), 4, "V1", std::nullopt);
  expectLabel(parse("index\tname\tlabel\n4\tV1\tx\n").labels.at(0), 4, "V1", std::nullopt);
}

// The first line alone would be parted at its comma.
TEST(LabelForms, LinesThatAreNotPartedAlikeAreRefused) {
  EXPECT_EQ(
      refusal("\n\nName,index\nN\xd4\xce\xf5\xa9\x33\n\n\r\n\n\niso-8859-1\ni"),
      "its lines are not parted alike. Part the cells of all lines by tabs, the column names among them.");
}

TEST(LabelForms, TwoLinesPerLabel) {
  const auto table =
      parse("7Networks LH Vis_1\r\n1 120 18 131 255\r\n\r\n7Networks_LH_Vis_2\r\n2 0 0 1 0\r\n");
  ASSERT_EQ(table.labels.size(), 2U);
  expectLabel(table.labels[0], 1, "7Networks LH Vis_1", 0x781283U);
  expectLabel(table.labels[1], 2, "7Networks_LH_Vis_2", 0x000001U);
}

TEST(LabelForms, TwoLinesPerLabelNeedBoth) {
  EXPECT_EQ(
      refusal("A\n1 120 18 131 255\nB\n"),
      "line 3: \"B\" has no line of numbers below it. Write index, red, green, blue and alpha below every "
      "name.");
  EXPECT_EQ(refusal("A\n1 120 18 131 255\nB\n2 120 18 131\n"),
            "line 4: \"2 120 18 131\" does not number the label above it. Write index, red, green, blue and "
            "alpha below every name, such as 1 120 18 131 255.");
  EXPECT_EQ(
      refusal("A\n1 120 18 131 256\n"),
      "line 2: \"1 120 18 131 256\" does not number the label above it. Write index, red, green, blue and "
      "alpha below every name, such as 1 120 18 131 255.");
}

TEST(LabelForms, ColourTablesOfFreesurfer) {
  const auto table = parse(
      "# a comment\n\n#No. Label Name: R G B A\n0   Unknown  0 0 0 0\n17  Left-Hippocampus  220 216 20  0\n"
      "# another\n1001\tctx-lh-bankssts\t25\t100\t40\t0\n");
  ASSERT_EQ(table.labels.size(), 2U);
  expectLabel(table.labels[0], 17, "Left-Hippocampus", 0xDCD814U);
  expectLabel(table.labels[1], 1001, "ctx-lh-bankssts", 0x196428U);
}

TEST(LabelForms, ColourTablesOfFreesurferNameTheLineThatIsNone) {
  const std::string remedy =
      "is no label. Write index, name (one word), red, green, blue and alpha, such as 17 Left-Hippocampus "
      "220 "
      "216 20 0.";
  EXPECT_EQ(refusal("17 A 220 216 20 0\n18 Two words 1 2 3 0\n"),
            "line 2: \"18 Two words 1 2 3 0\" " + remedy);
  EXPECT_EQ(refusal("17 A 220 216 20 0\nx B 1 2 3 0\n"), "line 2: \"x B 1 2 3 0\" " + remedy);
  EXPECT_EQ(refusal("17 A 220 -1 20 0\n"), "line 1: \"17 A 220 -1 20 0\" " + remedy);
}

TEST(LabelForms, LabelFilesOfMrtrixGiveTheLongName) {
  const auto table = parse(
      "# index short long R G B A\n0 Unknown Unknown 0 0 0 0\n1 L.BSTS ctx-lh-bankssts 25 5 25 255\n"
      "2 L.X \"Left area  2\" 1 2 3 255\n");
  ASSERT_EQ(table.labels.size(), 2U);
  expectLabel(table.labels[0], 1, "ctx-lh-bankssts", 0x190519U);
  expectLabel(table.labels[1], 2, "Left area 2", 0x010203U);
}

TEST(LabelForms, LabelFilesOfMrtrixNameTheLineThatIsNone) {
  EXPECT_EQ(refusal("1 a b 25 5 25 255\n2 c 1 2 3 4\n"),
            "line 2: \"2 c 1 2 3 4\" is no label. Write index, short name, long name, red, green, blue and "
            "alpha, such as 1 L.BSTS ctx-lh-bankssts 25 5 25 255.");
}

TEST(LabelForms, IndicesOfFslAreVolumesAndItsImagesHoldOneMore) {
  for (const std::string type : {"<header><type>Probabalistic</type></header>\n", ""}) {
    const auto table = parse(kXmlHead + type + kXmlLabels);
    ASSERT_EQ(table.labels.size(), 2U);
    expectLabel(table.labels[0], 1, "Frontal Pole", std::nullopt);
    expectLabel(table.labels[1], 2, "Insular Cortex", std::nullopt);
  }
}

TEST(LabelForms, IndicesOfFslAreTheValuesWhereTheAtlasIsOfTypeLabel) {
  const auto table = parse(kXmlHead + "<header><type>Label</type></header>\n" + kXmlLabels);
  ASSERT_EQ(table.labels.size(), 1U);  // 0 is the background
  expectLabel(table.labels[0], 1, "Insular Cortex", std::nullopt);
}

TEST(LabelForms, NamesOfFslComeOutInUtf8) {
  const std::string data =
      "<data><label index=\"0\">Br\xfc"
      "cke &amp; X</label></data></atlas>";
  EXPECT_EQ(parse(kXmlHead + data).labels.at(0).name,
            "Br\xc3\xbc"
            "cke & X");
  const std::string utf8 =
      "<atlas><data><label index=\"0\">Br\xc3\xbc"
      "cke</label></data></atlas>";
  EXPECT_EQ(parse(utf8).labels.at(0).name,
            "Br\xc3\xbc"
            "cke");
}

TEST(LabelForms, DamagedXmlNamesTheLine) {
  EXPECT_EQ(refusal("<atlas>\n<data>\n<label index=\"0\">A</data>\n</atlas>\n"),
            "line 3: the XML is damaged. Give a whole atlas description of FSL.");
  const std::string remedy = ". Write <label index=\"0\" x=\"1\" y=\"2\" z=\"3\">Name</label>.";
  EXPECT_EQ(refusal("<atlas>\n<data/></atlas>"),
            "line 1: the XML has no <atlas> with <data> and a <label>" + remedy);
  EXPECT_EQ(refusal("<other/>"), "line 1: the XML has no <atlas> with <data> and a <label>" + remedy);
  for (const std::string index : {"", "index=\"-1\"", "index=\"x\"", "index=\"2147483647\""}) {
    EXPECT_EQ(refusal("<atlas><data>\n<label " + index + ">A</label></data></atlas>"),
              "line 2: a label has no index that is a whole number from 0" + remedy);
  }
  EXPECT_EQ(refusal("<atlas><data>\n<label index=\"3\"></label></data></atlas>"),
            "line 2: a region has no name. Name it.");
}

TEST(LabelForms, EveryFormRefusesAnIndexThatComesTwice) {
  const std::string reason = "the index 1 comes twice. Give every region its own index.";
  EXPECT_EQ(refusal("A\n1 1 1 1 1\nB\n1 1 1 1 1\n"), "line 4: " + reason);
  EXPECT_EQ(refusal("1 A 1 1 1 1\n# x\n1 B 1 1 1 1\n"), "line 3: " + reason);
  EXPECT_EQ(refusal("1 A a 1 1 1 1\n1 B b 1 1 1 1\n"), "line 2: " + reason);
  EXPECT_EQ(refusal("<atlas><data><label index=\"0\">A</label>\n<label index=\"0\">B</label></data></atlas>"),
            "line 2: " + reason);
}

TEST(LabelForms, WhatFitsNoneIsToldAllOfThem) {
  const std::string remedy =
      "begins no label table that is known here. Give one of: columns \"index\" and \"name\" (or \"ROI_id\" "
      "and "
      "\"ROI_name\", \"index\" and \"label\"), two lines per label (name; index R G B A), a FreeSurfer "
      "colour "
      "table (index name R G B A), an MRtrix label file (index, short name, long name, R G B A), an FSL "
      "atlas "
      "description (XML).";
  EXPECT_EQ(refusal("\n\nnumber\tname\n1\tA\n"), "line 3: \"number name\" " + remedy);
  EXPECT_EQ(refusal("1 A\n2 B\n"), "line 1: \"1 A\" " + remedy);
  EXPECT_EQ(refusal("# nothing but a comment\n"), "line 1: \"# nothing but a comment\" " + remedy);
  EXPECT_EQ(refusal("1 20 30 40 50\n2 20 30 40 50\n"), "line 1: \"1 20 30 40 50\" " + remedy);
}

TEST(LabelForms, WhatIsNoTextIsRefused) {
  EXPECT_EQ(refusal(" \n\t\n"), "the table is empty. Give a label table.");
  EXPECT_EQ(refusal(std::string("index\tname\n1\ta\0\n", 15)), "it is no text file. Give a label table.");
}

TEST(LabelForms, AFileIsALabelTableWhenItBeginsLikeOne) {
  const Scratch folder;
  folder.write("a.txt", "1 A 1 1 1 1\nnonsense\n");
  folder.write("b.txt", "onset\tduration\ttrial_type\n1\t2\tface\n");
  EXPECT_TRUE(formats::isLabelTable(folder.file("a.txt")));
  EXPECT_FALSE(formats::isLabelTable(folder.file("b.txt")));
}

}  // namespace
