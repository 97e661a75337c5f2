// Whole sessions of the plug-in, answered as a page answers.
#include "workbench/plugin_desk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "host/script_front_end.h"
#include "tests/app/noise_data.h"
#include "tests/workbench/status_of.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr const char* kData = "data";

Json fileAnswer(const char* path) {
  return {{"folder", kData}, {"path", path}};
}

const std::vector<Json> kAnswers = {
    "1",  "0",   "1",    "all", fileAnswer("run1.vtc"), "1", "120", fileAnswer("run2.vtc"),
    "10", "110", Json(), "",    fileAnswer("maps")};  // null: cancel

struct PluginDeskTest : testing::Test {
  app_test::NoiseData data;
  workbench::EventHub news;
  workbench::FolderGuard folders;
  std::unique_ptr<workbench::PluginDesk> desk;

  PluginDeskTest() {
    fs::create_directories(data.folder / "work");
    folders.allow(data.folder.folder());
    desk = std::make_unique<workbench::PluginDesk>(options("page.log"), data.folder / "work", folders, news);
  }
  [[nodiscard]] host::SessionOptions options(const char* log) const {
    host::SessionOptions options;
    options.pluginPath = TAVMAP_PLUGIN;
    options.anatomyPath = data.folder / "t1.nii";
    options.vtcPath = data.folder / "run1.vtc";
    options.voisPath = data.folder / "vois.json";
    options.pluginsFolder = data.folder.path();
    options.seed = 7;
    options.logPath = data.folder / log;
    return options;
  }
  // The next question, or null when the session has ended.
  Json question() {
    for (;;) {
      const Json state = desk->state();
      if (state["state"] == "ended") return {};
      if (!state["question"].is_null()) return state["question"];
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  void give(const Json& question, Json answer) {
    if (answer.is_object()) answer["folder"] = folders.folders()[0].name;
    Json body{{"question", question["id"]}};
    if (answer.is_null())
      body["cancel"] = true;
    else
      body["answer"] = answer;
    desk->answer(body);
  }
  // Answers so many dialogs, cancels the next, and those that follow while patience lasts.
  Json session(std::size_t answered) {
    desk->start(true);
    std::size_t asked = 0;
    for (Json next = question(); !next.is_null(); next = question(), ++asked) {
      if (asked > kAnswers.size() + 20) {
        desk->end();
      } else {
        const Json cancelled;
        const Json answer = asked < answered ? kAnswers.at(asked) : cancelled;
        give(next, next["kind"] == "message" ? Json(true) : answer);
      }
    }
    return desk->state();
  }
  // The recorded answers, played by the scripted front end; its log goes into script.log.
  int replay(const std::string& script) {
    std::ostringstream out, err;
    host::ScriptFrontEnd frontEnd(host::readScript(script), out);
    return host::runSession(options("script.log"), frontEnd, out, err);
  }
  // Results that a session has left, which then go.
  std::map<std::string, std::string> takeResults() {
    std::map<std::string, std::string> results;
    for (const auto& [name, content] : filesBelow(data.folder.folder()))
      if (name.rfind("maps", 0) == 0 || name.ends_with("tav")) {
        results[name] = content;
        fs::remove(data.folder / name);
      }
    return results;
  }
};

TEST_F(PluginDeskTest, GivesWhatTheScriptedFrontEndGives) {
  const Json ended = session(kAnswers.size());
  EXPECT_EQ(ended["exitCode"], 0) << ended["message"];
  ASSERT_EQ(ended["maps"].size(), 1U);
  EXPECT_EQ(ended["maps"][0]["path"], data.folder / "maps_driver.tav");
  EXPECT_EQ(ended["maps"][0]["problem"], "");
  ASSERT_EQ(ended["maps"][0]["pictures"].size(), 6U);
  const std::string picture = ended["maps"][0]["pictures"][0]["path"];
  EXPECT_EQ(contentOf(data.folder / picture).substr(1, 3), "PNG");
  const auto results = takeResults();
  EXPECT_EQ(results.count("maps_driver.tav"), 1U);
  EXPECT_EQ(replay(ended["recorded"]), 0);
  EXPECT_EQ(differingFiles(results, takeResults()), "");
  EXPECT_EQ(contentOf(data.folder / "page.log"), contentOf(data.folder / "script.log"));
}

TEST_F(PluginDeskTest, GivesTheSameWithACancelAtEveryDialog) {
  for (std::size_t cancelled = 0; cancelled < kAnswers.size(); ++cancelled) {
    const Json ended = session(cancelled);
    const auto results = takeResults();
    const std::string log = contentOf(data.folder / "page.log");
    EXPECT_FALSE(log.empty()) << cancelled;
    const int replayed = replay(ended["recorded"]);
    if (ended["message"] != "tavmap: Ended in the page.\n") {
      EXPECT_EQ(replayed, ended["exitCode"]) << cancelled;
    }
    EXPECT_EQ(differingFiles(results, takeResults()), "") << cancelled;
    EXPECT_EQ(log, contentOf(data.folder / "script.log")) << cancelled;
  }
}

TEST_F(PluginDeskTest, HasOneSessionAtATime) {
  desk->start(false);
  const Json asked = question();
  EXPECT_EQ(statusOf([this] { desk->start(false); }), 409);
  EXPECT_EQ(question()["id"], asked["id"]) << "a page that comes back finds the question";
  desk->end();
  EXPECT_TRUE(question().is_null());
  EXPECT_EQ(desk->state()["exitCode"], 1);
  desk->start(false);
  EXPECT_NE(question()["id"], asked["id"]);
}

}  // namespace
