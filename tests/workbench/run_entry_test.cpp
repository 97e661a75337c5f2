#include "workbench/run_entry.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/file_error.h"
#include "tests/support/scratch.h"

namespace {

using workbench::RunEntry;
using workbench::RunState;

TEST(RunEntry, IsKeptWhole) {
  RunEntry entry{3,    "a.toml",     "/x/a.toml", "/x/out", "p", RunState::kFailed,
                 0.25, std::nullopt, "why",       "/x/log"};
  const std::string text = nlohmann::ordered_json{{"runs", {workbench::keptJson(entry)}}}.dump();
  const std::vector<RunEntry> read = workbench::entriesFromText(text, "list");
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(workbench::keptJson(read[0]), workbench::keptJson(entry));
  EXPECT_EQ(read[0].state, RunState::kFailed);
}

TEST(RunEntry, RefusesWhatIsNoList) {
  for (const char* text : {"", "[]", R"({"runs": [{}]})", R"({"runs": 1})"})
    EXPECT_THROW(static_cast<void>(workbench::entriesFromText(text, "list")), formats::FileError) << text;
}

TEST(RunEntry, ShowsTheLastLines) {
  const Scratch scratch;
  const auto file = scratch.write("log", std::string(20000, 'x') + "\none\n\ntwo\nthree\n");
  EXPECT_EQ(workbench::lastLines(file, 2), (std::vector<std::string>{"two", "three"}));
  EXPECT_TRUE(workbench::lastLines(scratch.folder() / "none", 2).empty());
}

}  // namespace
