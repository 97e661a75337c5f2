#include "request/toml_table.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

const std::vector<std::string> kKnown = {"a", "b", "list", "table"};

// A table of one text, and what reading something of it says.
class Toml : public ::testing::Test {
 protected:
  TomlTable table(const std::string& text) {
    root_ = toml::parse(text);
    return {root_, "f.toml", "[t]", kKnown};
  }
  template <typename Read>
  std::string problem(const std::string& text, Read read) {
    return messageOf<InputError>([&] { read(table(text)); });
  }
  toml::table root_;
};

TEST_F(Toml, AbsentKeysGiveTheFallback) {
  const TomlTable t = table("");
  EXPECT_FALSE(t.has("a"));
  EXPECT_EQ(t.text("a", "x"), "x");
  EXPECT_TRUE(t.flag("a", true));
  EXPECT_EQ(t.integer("a", 7, 0, 9), 7);
  EXPECT_EQ(t.number("a", 0.5, 0, 1), 0.5);
  EXPECT_TRUE(t.texts("a").empty());
  EXPECT_TRUE(t.numbers("a").empty());
  EXPECT_EQ(t.array("a"), nullptr);
  EXPECT_EQ(t.subtable("a"), nullptr);
}

TEST_F(Toml, BothEndsOfARangeAreAllowed) {
  EXPECT_EQ(table("a = 3").integer("a", 0, 3, 5), 3);
  EXPECT_EQ(table("a = 5").integer("a", 0, 3, 5), 5);
  EXPECT_EQ(table("a = 0.25").number("a", 0, 0.25, 0.5), 0.25);
  EXPECT_EQ(table("a = 0.5").number("a", 0, 0.25, 0.5), 0.5);
  EXPECT_EQ(table("a = 1").number("a", 0, 0, 2), 1.0);  // a whole number is a number
}

TEST_F(Toml, ValuesOutOfRangeNameLineTableAndRange) {
  const auto integer = [](const TomlTable& t) { return t.integer("b", 0, 3, 5); };
  const auto number = [](const TomlTable& t) { return t.number("b", 0, 0.25, 0.5); };
  EXPECT_EQ(problem("a = 1\nb = 2", integer), "f.toml:2: 'b' in [t] is 2, outside 3 to 5");
  EXPECT_EQ(problem("b = 6", integer), "f.toml:1: 'b' in [t] is 6, outside 3 to 5");
  EXPECT_EQ(problem("b = 0.2", number), "f.toml:1: 'b' in [t] is 0.2, outside 0.25 to 0.5");
  EXPECT_EQ(problem("b = 0.6", number), "f.toml:1: 'b' in [t] is 0.6, outside 0.25 to 0.5");
}

TEST_F(Toml, ValuesOfAnotherTypeAreRefused) {
  const auto message = [&](const std::string& text, auto read) { return problem("a = " + text, read); };
  const std::string begin = "f.toml:1: 'a' in [t] ";
  EXPECT_EQ(message("1", [](const TomlTable& t) { return t.text("a"); }), begin + "must be a text in quotes");
  EXPECT_EQ(message("1", [](const TomlTable& t) { return t.flag("a", true); }),
            begin + "must be true or false");
  for (const char* text : {"1.0", "true", "'1'"}) {
    EXPECT_EQ(message(text, [](const TomlTable& t) { return t.integer("a", 0, 1, 2); }),
              begin + "must be a whole number from 1 to 2");
  }
  for (const char* text : {"nan", "inf", "'1'", "true"}) {
    EXPECT_EQ(message(text, [](const TomlTable& t) { return t.number("a", 0, 0, 1); }),
              begin + "must be a number");
  }
  for (const char* list : {"[1, 'x']", "[1, nan]", "[inf, 2]", "[3, -inf]"}) {
    EXPECT_EQ(message(list, [](const TomlTable& t) { return t.numbers("a"); }), begin + "must hold numbers")
        << list;
  }
  EXPECT_EQ(message("1", [](const TomlTable& t) { return t.numbers("a"); }), begin + "must be a list in [ ]");
  EXPECT_EQ(message("1", [](const TomlTable& t) { return t.subtable("a"); }), begin + "must be a table");
  EXPECT_EQ(message("[1]", [](const TomlTable& t) { return t.texts("a"); }),
            begin + "must hold texts in quotes");
  EXPECT_EQ(message("[1.5]", [](const TomlTable& t) { return t.texts("a", true); }),
            begin + "must hold names in quotes or whole numbers");
}

TEST_F(Toml, OneTextStandsForAListOfOne) {
  EXPECT_EQ(table("a = 'x'").texts("a"), std::vector<std::string>{"x"});
  EXPECT_EQ(table("a = ['x', 'y']").texts("a"), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(table("a = ['x', 4]").texts("a", true), (std::vector<std::string>{"x", "4"}));
  EXPECT_EQ(table("list = [0.5, 2]").numbers("list"), (std::vector<double>{0.5, 2}));
}

TEST_F(Toml, UnknownKeysAreRefusedBeforeAnythingIsRead) {
  EXPECT_EQ(problem("a = 1\n\ntabel = 2", [](const TomlTable&) {}),
            "f.toml:3: unknown key 'tabel' in [t]; did you mean 'table'?");
}

TEST_F(Toml, LinesAreThoseOfTheValues) {
  const TomlTable t = table("a = 1\nlist = [1]\n[table]\nx = 1\n");
  EXPECT_EQ(t.line("a"), 1);
  EXPECT_EQ(t.line("list"), 2);
  EXPECT_EQ(t.line("table"), 3);
  EXPECT_EQ(t.line("b"), t.line());  // absent: the table's own
}

}  // namespace
}  // namespace study
