#include <gtest/gtest.h>

#include <future>

#include "formats/file_error.h"
#include "host/run_ended.h"
#include "tests/support/scratch.h"
#include "tests/workbench/status_of.h"
#include "workbench/page_front_end.h"

namespace {

using Json = workbench::PageDialogs::Json;

struct PageDialogsTest : testing::Test {
  Scratch scratch;
  workbench::EventHub news;
  workbench::FolderGuard folders;
  workbench::PageDialogs dialogs{news};
  workbench::PageFrontEnd frontEnd{dialogs, folders, [this](const std::string& maps) {
                                     if (maps.empty())
                                       throw formats::FileError("maps", "is empty", "Save it");
                                     return std::vector<std::string>{scratch.file("data/a.png")};
                                   }};

  PageDialogsTest() {
    scratch.write("data/run.vtc");
    scratch.write("secret.vtc");
    folders.allow(scratch.folder() / "data");
    dialogs.begin();
  }
  // Waits until one stands.
  Json question() {
    for (;;)
      if (Json state = dialogs.state(); !state["question"].is_null()) return state["question"];
  }
  int answer(const Json& value) {
    const Json id = question()["id"];
    return statusOf([&] { dialogs.answer({{"question", id}, {"answer", value}}); });
  }
  void cancel() { dialogs.answer({{"question", question()["id"]}, {"cancel", true}}); }
  template <typename Ask>
  auto asked(Ask ask) {
    return std::async(std::launch::async, ask);
  }
};

TEST_F(PageDialogsTest, AskUntilAnAnswerIsWithinTheLimits) {
  auto number = asked([this] { return frontEnd.askInteger({"How many?<br>1. one<br>2. two", 1, 1, 2, 0}); });
  EXPECT_EQ(question()["text"], "How many?\n1. one\n2. two");
  EXPECT_EQ(question()["choices"][1]["name"], "two");
  EXPECT_EQ(answer("3"), 400);
  EXPECT_EQ(answer("two"), 400);
  EXPECT_EQ(answer(2), 400);
  EXPECT_EQ(answer("2"), 0);
  EXPECT_EQ(number.get(), 2);
  EXPECT_TRUE(dialogs.state()["question"].is_null());
}

TEST_F(PageDialogsTest, EveryQuestionCanBeCancelled) {
  auto number = asked([this] { return frontEnd.askNumber({"x", 1.0F, 0.0F, 2.0F}); });
  cancel();
  EXPECT_EQ(number.get(), std::nullopt);
  auto text = asked([this] { return frontEnd.askText({"x", "", 3}); });
  cancel();
  EXPECT_EQ(text.get(), std::nullopt);
  auto yes = asked([this] { return frontEnd.askYesNo("x"); });
  cancel();
  EXPECT_FALSE(yes.get());
}

TEST_F(PageDialogsTest, GiveTextsAndNumbersAsTheyAre) {
  auto text = asked([this] { return frontEnd.askText({"x", "", 6}); });
  EXPECT_EQ(answer("sevenxx"), 400);
  EXPECT_EQ(answer("cancel"), 0);
  EXPECT_EQ(text.get(), "cancel");
  auto number = asked([this] { return frontEnd.askNumber({"x", 1.0F, 0.0F, 2.0F}); });
  EXPECT_EQ(answer("0.1"), 0);
  EXPECT_EQ(number.get(), 0.1F);
}

TEST_F(PageDialogsTest, TakeFilesOfTheAllowedFoldersAlone) {
  auto file = asked([this] { return frontEnd.askFileToOpen({"Open", "", "VTC (*.vtc)", 260}); });
  EXPECT_EQ(answer({{"folder", "data"}, {"path", "../secret.vtc"}}), 403);
  EXPECT_EQ(answer({{"folder", "data"}, {"path", "none.vtc"}}), 404);
  EXPECT_EQ(answer(scratch.file("secret.vtc")), 400);
  EXPECT_EQ(answer({{"folder", "data"}, {"path", "run.vtc"}}), 0);
  EXPECT_EQ(file.get(), std::filesystem::canonical(scratch.folder() / "data/run.vtc").string());
  auto saved = asked([this] { return frontEnd.askFileToSave({"Save", "", "", 260}); });
  EXPECT_EQ(answer({{"folder", "data"}, {"path", "../maps"}}), 403);
  EXPECT_EQ(answer({{"folder", "data"}, {"path", "maps"}}), 0);
  EXPECT_EQ(saved.get(), (std::filesystem::canonical(scratch.folder() / "data") / "maps").string());
}

TEST_F(PageDialogsTest, ShowSavedMapsWithTheirPictures) {
  frontEnd.showSavedMaps("a.tav");
  frontEnd.showSavedMaps("");
  const Json maps = dialogs.state()["maps"];
  EXPECT_EQ(maps[0]["path"], "a.tav");
  EXPECT_EQ(maps[0]["place"]["path"], "") << "it lies in no folder that may be read";
  EXPECT_EQ(maps[0]["pictures"][0], (Json{{"folder", "data"}, {"path", "a.png"}}));
  EXPECT_EQ(maps[1]["problem"], "maps: is empty. Save it.");
}

TEST_F(PageDialogsTest, AnAnswerToAnotherQuestionIsRefused) {
  auto yes = asked([this] { return frontEnd.askYesNo("x"); });
  const Json late{{"question", question()["id"]}, {"answer", true}};
  EXPECT_EQ(statusOf([&] { dialogs.answer({{"question", 0}, {"answer", true}}); }), 409);
  dialogs.answer(late);
  EXPECT_TRUE(yes.get());
  auto next = asked([this] { return frontEnd.askYesNo("y"); });
  static_cast<void>(question());
  EXPECT_EQ(statusOf([&] { dialogs.answer(late); }), 409);
  EXPECT_EQ(answer(false), 0);
  EXPECT_FALSE(next.get());
}

TEST_F(PageDialogsTest, AnEndedSessionEndsTheRun) {
  auto yes = asked([this] { return frontEnd.askYesNo("x"); });
  static_cast<void>(question());
  dialogs.end();
  EXPECT_THROW(yes.get(), host::RunEnded);
  EXPECT_THROW(frontEnd.log("x"), host::RunEnded);
}

TEST_F(PageDialogsTest, PagesKnowThatASessionIsToEnd) {
  frontEnd.setBusy(true);
  EXPECT_FALSE(dialogs.state()["ending"]);
  dialogs.end();
  EXPECT_TRUE(dialogs.state()["ending"]) << "the plug-in computes and has not called yet";
  EXPECT_THROW(frontEnd.setBusy(false), host::RunEnded);
  dialogs.begin();
  EXPECT_FALSE(dialogs.state()["ending"]);
}

}  // namespace
