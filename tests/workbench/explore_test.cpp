// Exploring the small data set through the functions behind the endpoints.
#include "workbench/explore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "tests/support/run_command_fixture.h"
#include "tests/workbench/packed_reply.h"
#include "workbench/exchange.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

class ExploreSmall : public SmallStudyRun {
 protected:
  workbench::ExploreOptions options() {
    workbench::ExploreOptions options;
    options.sources.request = write();
    options.sources.workFolder = folder() / "work";
    options.program = TAVMAP_PROGRAM;
    options.version = TAVMAP_VERSION;
    options.threads = 2;
    options.mostBytes = std::size_t{1} << 30U;
    return options;
  }
  static std::string settled(const workbench::Explore& explore) {
    while (explore.state()["state"] == "loading") std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return explore.state()["state"];
  }
  static Json label(int id) {
    return {{"reference", {{"kind", "label"}, {"id", id}}},
            {"condition", "whole"},
            {"types", {"DTAV"}},
            {"sequence", 3}};
  }
  static Json headerOf(const std::string& reply) {
    std::uint32_t length = 0;
    std::memcpy(&length, reply.data(), 4);
    return Json::parse(reply.substr(4, length));
  }
  // p of dTAV as the page gets it, from the image of the request that was saved under this name; no entry
  // where the image has none.
  std::map<std::uint32_t, int> codesOfRun(const std::string& name) {
    std::map<std::uint32_t, int> codes;
    for (const auto& entry : fs::directory_iterator(results() / name)) {
      if (!entry.path().filename().string().ends_with("dTAV_stat-p_statmap.nii.gz")) continue;
      const std::vector<float> p = formats::readImage(entry.path().string()).values;
      for (std::uint32_t cell = 0; cell < p.size(); ++cell)
        if (!std::isnan(p[cell])) codes[cell] = static_cast<int>(std::lround(std::min(10 * p[cell], 254.0F)));
    }
    return codes;
  }
  template <class Call>
  static int refusalOf(Call call) {
    try {
      call();
    } catch (const workbench::Refusal& refusal) {
      return refusal.status;
    }
    return 0;
  }
};

TEST_F(ExploreSmall, OpensTheOnlyThingThereIs) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready") << explore.state().dump();
  const Json state = explore.state();
  EXPECT_EQ(state["grid"]["size"], Json({12, 10, 8}));
  EXPECT_EQ(state["runs"].size(), 2U);
  EXPECT_EQ(state["conditions"][1]["name"], "face");
  EXPECT_EQ(state["labels"][0]["name"], "A");
  EXPECT_EQ(state["labels"][0]["voxels"], small_study::regionVoxels());
  EXPECT_EQ(state["voxels"], explore.study()->cells.size());
  EXPECT_TRUE(state["hasLabels"]);
  EXPECT_FALSE(state["hasAnatomy"]);
}

TEST_F(ExploreSmall, TellsWhatThePageNeedsOfWhatIsOpen) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  const Json state = explore.state(), face = state["conditions"][1], maps = state["maps"];
  EXPECT_EQ(state["runs"][1], (Json{{"name", "run2"}, {"volumes", 160}, {"trSeconds", 2}, {"censored", 0}}));
  ASSERT_EQ(face["intervals"].size(), 4U) << "two blocks in each run";
  EXPECT_EQ(face["intervals"][3]["run"], "run2");
  int volumes = 0;
  for (const Json& interval : face["intervals"])
    volumes += interval["last"].get<int>() - interval["first"].get<int>() + 1;
  EXPECT_EQ(face["volumes"], volumes);
  ASSERT_EQ(maps.size(), 6U);
  EXPECT_EQ(maps[0]["type"], "REF2VOX");
  EXPECT_EQ(maps[0]["positive"], "from the reference to the voxel");
  EXPECT_TRUE(maps[0]["negative"].is_null());
  EXPECT_EQ(maps[3]["negative"], "more from the voxel to the reference");
  EXPECT_EQ(maps[3]["hasThresholds"], true);
  EXPECT_EQ(maps[5]["hasThresholds"], false);
  EXPECT_EQ(state["settings"]["order"], 1);
  EXPECT_EQ(state["settings"]["draws"], 20);
  EXPECT_FALSE(state["settings"].contains("confounds"));
  EXPECT_TRUE(state["confoundPresets"].empty());
}

TEST_F(ExploreSmall, AnswersMapsAndVoxels) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  const auto mm = explore.study()->plan.space.grid.toMm({5, 5, 4});
  EXPECT_EQ(explore.voxel({{"mm", mm}})["status"], "no maps yet");
  Json asked = label(1);
  asked["draft"] = true;
  EXPECT_EQ(headerOf(explore.maps(asked))["draft"], true);
  const Json header = headerOf(explore.maps(label(1)));
  EXPECT_EQ(header["draft"], false);
  EXPECT_EQ(header["sequence"], 3);
  EXPECT_EQ(header["arrays"].size(), 3U) << "values, p, directions";
  const Json voxel = explore.voxel({{"mm", mm}});
  EXPECT_EQ(voxel["voxel"], Json({5, 5, 4}));
  EXPECT_EQ(voxel["series"].size(), 2U);
  EXPECT_EQ(voxel["lagged"].size(), 17U);
  EXPECT_EQ(voxel["maps"][0]["null"].size(), 20U);
  EXPECT_EQ(explore.voxel({{"mm", {5000, 0, 0}}})["status"], "outside the mask");
}

TEST_F(ExploreSmall, AVoxelIsOfTheMapsThatItsPageHas) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  const auto of = [&](int id) {
    Json asked = label(id);
    asked["mm"] = explore.study()->plan.space.grid.toMm({5, 5, 4});
    return explore.voxel(asked)["maps"][0];
  };
  static_cast<void>(explore.maps(label(1)));
  const Json first = of(1);
  static_cast<void>(explore.maps(label(2)));  // as another page asks
  EXPECT_NE(of(2)["value"], first["value"]);
  EXPECT_EQ(of(1), first);
}

TEST_F(ExploreSmall, RefusesWhatCannotBeAsked) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  const auto refusal = [&](const char* change) {
    Json asked = label(1);
    asked.merge_patch(Json::parse(change));
    return refusalOf([&] { static_cast<void>(explore.maps(asked)); });
  };
  EXPECT_EQ(refusal("{}"), 0);
  for (const char* wrong :
       {R"({"reference": null})", R"({"reference": {"kind": "cube"}})", R"({"reference": {"id": 99}})",
        R"({"reference": {"id": "A"}})", R"({"reference": {"kind": "voxels", "cells": [-1]}})",
        R"({"reference": {"kind": "voxels", "cells": [5000000]}})",
        R"({"reference": {"kind": "sphere", "mm": [1, 2], "radiusMm": 4}})",
        R"({"reference": {"kind": "sphere", "mm": [1, 2, "x"], "radiusMm": 4}})", R"({"condition": "house"})",
        R"({"condition": 7})", R"({"types": []})", R"({"types": ["XTAV"]})", R"({"settings": {"order": 0}})",
        R"({"settings": {"order": 21}})", R"({"settings": {"draws": 101}})",
        R"({"settings": {"draws": 1.5}})"})
    EXPECT_EQ(refusal(wrong), 400) << wrong;
  EXPECT_EQ(refusalOf([&] { static_cast<void>(explore.image("../r")); }), 404);
  EXPECT_EQ(refusalOf([&] { static_cast<void>(explore.image("anatomy")); }), 404);
  EXPECT_EQ(refusalOf([&] { explore.open("7"); }), 404);
  Json nameless = label(1);
  nameless["name"] = "../..";
  EXPECT_EQ(refusalOf([&] { static_cast<void>(explore.save(nameless)); }), 400);
}

TEST_F(ExploreSmall, SavesARequestWhoseRunHasThePThatWereShown) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  Json asked = label(2);
  asked["name"] = "my region";
  const Json saved = explore.save(asked);
  EXPECT_EQ(saved["path"], (folder() / "work" / "my-region.toml").string());
  const ProgramResult result = tavmap({"run", saved["path"], "--no-report", "--quiet"}, folder());
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const auto run = codesOfRun("my-region");
  const auto shown = PackedReply(explore.maps(asked)).array<std::uint8_t>("what", "p");
  const auto cells = explore.study()->cells;
  ASSERT_FALSE(run.empty());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!run.contains(cells[i])) continue;
    ASSERT_EQ(run.at(cells[i]), shown[i]) << "cell " << cells[i];
  }
}

TEST_F(ExploreSmall, ChangesRunsByLoadingAnew) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  EXPECT_FALSE(explore.change(Json::object()));
  EXPECT_TRUE(explore.change({{"runs", {"run2"}}}));
  ASSERT_EQ(settled(explore), "ready") << explore.state().dump();
  EXPECT_EQ(explore.state()["runs"].size(), 1U);
  EXPECT_EQ(refusalOf([&] { explore.change({{"runs", Json::array()}}); }), 400);
  EXPECT_TRUE(explore.change(Json::object())) << "as the request has them";
  ASSERT_EQ(settled(explore), "ready");
  EXPECT_EQ(explore.state()["runs"].size(), 2U);
}

TEST_F(ExploreSmall, WritesImagesOfWhatIsOpen) {
  workbench::Explore explore(options());
  ASSERT_EQ(settled(explore), "ready");
  for (const char* name : {"mean", "labels", "mask"}) EXPECT_TRUE(fs::exists(explore.image(name))) << name;
}

TEST_F(ExploreSmall, TellsWhatIsWrongWithItsSources) {
  workbench::ExploreOptions wrong = options();
  wrong.sources.request = scratch_.write("broken.toml", "[settings]\nordr = 3\n");
  workbench::Explore explore(wrong);
  EXPECT_EQ(settled(explore), "failed");
  EXPECT_NE(explore.state()["message"].get<std::string>().find("broken.toml"), std::string::npos);
  EXPECT_EQ(refusalOf([&] { static_cast<void>(explore.maps(label(1))); }), 409);
}

TEST_F(ExploreSmall, HasNothingWithoutSources) {
  workbench::ExploreOptions nothing = options();
  nothing.sources = {};
  workbench::Explore explore(nothing);
  EXPECT_EQ(explore.state()["state"], "none");
}

TEST_F(ExploreSmall, ExploresFilesWithoutARequest) {
  workbench::ExploreOptions files = options();
  files.sources.request.clear();
  files.sources.bold = folder() / "bold1.nii.gz";
  files.sources.mask = folder() / "mask.nii.gz";
  workbench::Explore explore(files);
  ASSERT_EQ(settled(explore), "ready") << explore.state().dump();
  EXPECT_FALSE(explore.state()["hasLabels"]);
  const auto mm = explore.study()->plan.space.grid.toMm({5, 5, 4});
  const Json asked{{"reference", {{"kind", "sphere"}, {"mm", mm}, {"radiusMm", 5}}},
                   {"condition", "whole"},
                   {"types", {"DTAV"}}};
  EXPECT_EQ(headerOf(explore.maps(asked))["draft"], false);
}

// One voxel whose course all others follow one volume later.
void writeFollowers(const fs::path& file, io::GridSize size) {
  formats::ImageHeader header;
  header.size = size;
  header.volumes = small_study::kVolumes;
  header.trMs = 2000;
  header.sformCode = 1;
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 3;
  std::mt19937 random(1);
  std::normal_distribution<float> noise(0, 10);
  formats::NiftiWriter writer(file.string(), header);
  float before = 0;
  for (int t = 0; t < header.volumes; ++t) {
    const float leader = noise(random);
    std::vector<float> volume(size.voxels());
    for (float& value : volume) value = 1000 + before + noise(random);
    volume[0] = 1000 + leader;
    before = leader;
    writer.writeValues(volume.data(), volume.size());
  }
  writer.commit();
}

TEST_F(ExploreSmall, DirectionsOfVeryManyVoxelsAreLeftToARun) {
  workbench::ExploreOptions files = options();
  files.sources.request.clear();
  files.sources.bold = folder() / "followers.nii";
  for (const bool areMany : {false, true}) {
    writeFollowers(files.sources.bold, {20, 20, areMany ? 10 : 5});
    workbench::Explore explore(files);
    ASSERT_EQ(settled(explore), "ready") << explore.state().dump();
    const Json asked{{"reference", {{"kind", "voxels"}, {"cells", Json::array({0U})}}},
                     {"condition", "whole"},
                     {"types", {"DTAV"}}};
    const Json header = headerOf(explore.maps(asked));
    EXPECT_EQ(header["arrays"].size(), areMany ? 2U : 3U) << "values, p, directions";
    EXPECT_EQ(
        header["warnings"].dump().find("their directions are tested by `tavmap run`") != std::string::npos,
        areMany)
        << header["warnings"].dump();
  }
}

}  // namespace
