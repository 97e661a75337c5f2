// A folder with the small data set, and whole runs of the built program over it.
#ifndef TAVMAP_TESTS_SUPPORT_RUN_COMMAND_FIXTURE_H
#define TAVMAP_TESTS_SUPPORT_RUN_COMMAND_FIXTURE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

class SmallStudyRun : public ::testing::Test {
 protected:
  void SetUp() override { small_study::writeTo(folder()); }
  const std::filesystem::path& folder() const { return scratch_.folder(); }
  std::filesystem::path results() const { return folder() / "results"; }
  std::filesystem::path write(const std::string& settings = "", const std::string& more = "") {
    return scratch_.write("r.toml", small_study::request(settings, more));
  }
  ProgramResult run(const std::filesystem::path& request, std::vector<std::string> more = {}) {
    std::vector<std::string> words = {"run", request.string()};
    words.insert(words.end(), more.begin(), more.end());
    return tavmap(words, folder());
  }
  nlohmann::json read(const std::string& name) {
    std::ifstream stream(results() / name);
    return nlohmann::json::parse(stream, nullptr, false);
  }
  // Status of every reference in a --json summary.
  std::vector<bool> kept(const ProgramResult& result) {
    std::vector<bool> flags;
    const nlohmann::json summary = nlohmann::json::parse(result.out, nullptr, false);
    if (summary.is_discarded()) return flags;
    for (const nlohmann::json& reference : summary["References"]) flags.push_back(reference["Kept"]);
    return flags;
  }
  Scratch scratch_;
};

// One of its maps, without extension.
inline const std::string kMap = "small_seed-A_contrast-wholeRef2Vox_stat-effect_statmap";

#endif
