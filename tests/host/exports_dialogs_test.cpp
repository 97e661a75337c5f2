#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "host/exports.h"
#include "tests/fakes/vtc_file.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"
#include "tests/support/scratch.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;

void nothing(host::Workspace&) {}

TEST(DialogOperations, HandOverTheAnswer) {
  const Scratch folder;
  const std::string vtc = folder.write("a.vtc", "");
  ActiveRun active("message closed\nyes\nno\ninteger 3\nfloat 0.5\ntext faces\nopen " + vtc + "\nsave " +
                   (folder / "maps") + "\n");
  char out[4096] = "before";
  zqMessageBox("is closed");
  EXPECT_EQ(zqYesNoMessageBox("Sure?"), 1);
  EXPECT_EQ(zqYesNoMessageBox("Sure?"), 0);
  EXPECT_EQ(zqGetIntegerInput("n", 1, 0, 5), 3);
  EXPECT_EQ(zqGetFloatInput("x", 0.0F, 0.0F, 1.0F), 0.5F);
  EXPECT_EQ(zqGetTextInput("t", "", out), 1);
  EXPECT_STREQ(out, "faces");
  EXPECT_EQ(zqGetOpenFileName("o", "", "", out), 1);
  EXPECT_STREQ(out, vtc.c_str());
  EXPECT_EQ(zqGetSaveFileName("s", "", "", out), 1);
  EXPECT_EQ(out, folder / "maps");
}

TEST(DialogOperations, TellCancelFromEveryAnswer) {
  ActiveRun active("cancel\ncancel\ncancel\ncancel\ncancel\ncancel\ncancel\n");
  char out[16] = "before";
  EXPECT_EQ(zqYesNoMessageBox("Sure?"), 0);
  EXPECT_EQ(zqGetIntegerInput("n", 1, 0, 5), -1);
  EXPECT_LT(zqGetFloatInput("x", 0.0F, 0.0F, 1.0F), 0.0F);
  EXPECT_LT(zqGetFloatInput("x", 0.0F, -1e30F, 1.0F), -1e30F);
  EXPECT_EQ(zqGetTextInput("t", "", out), 0);
  EXPECT_EQ(zqGetOpenFileName("o", "", "", out), 0);
  EXPECT_EQ(zqGetSaveFileName("s", "", "", out), 0);
  EXPECT_STREQ(out, "before");
}

TEST(DialogOperations, ShowTheBusyCursor) {
  ActiveRun active;
  zqShowBusyCursor();
  zqUpdateActiveWindow();
  zqStopBusyCursor();
  EXPECT_FALSE(active.run.ended().has_value());
}

TEST(DialogOperations, RefuseNullTexts) {
  char out[16];
  EXPECT_EQ(complaintAbout(nothing, [] { zqMessageBox(nullptr); }),
            "zqMessageBox: the text is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqYesNoMessageBox(nullptr); }),
            "zqYesNoMessageBox: the text is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetIntegerInput(nullptr, 1, 0, 2); }),
            "zqGetIntegerInput: the prompt is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetTextInput("t", "", nullptr); }),
            "zqGetTextInput: the text buffer is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetTextInput("t", nullptr, out); }),
            "zqGetTextInput: the initial text is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetOpenFileName("o", nullptr, "", out); }),
            "zqGetOpenFileName: the start folder is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetSaveFileName("o", "", nullptr, out); }),
            "zqGetSaveFileName: the filter is a null pointer");
}

TEST(DialogOperations, RefuseLimitsThatNoAnswerMeets) {
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetIntegerInput("n", 1, 1, 0); }),
            "zqGetIntegerInput: the smallest allowed value is above the largest");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetIntegerInput("n", 7, 1, 3); }),
            "zqGetIntegerInput: the initial value is out of range");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetFloatInput("x", NAN, 0.0F, 1.0F); }),
            "zqGetFloatInput: the initial value is not a finite number");
}

// The volumes that the front end is told of.
struct Listener : host::ScriptFrontEnd {
  explicit Listener(std::ostream& out)
      : ScriptFrontEnd(host::parseScript("integer 1\ninteger 1\n", "s.txt"), out) {}
  std::optional<int> askInteger(const host::IntegerQuestion& question) override {
    volumes = question.volumes;
    return ScriptFrontEnd::askInteger(question);
  }
  int volumes = -1;
};

TEST(DialogOperations, TellHowLongTheRunIsThatTheDialogNamesOrElseTheLinkedOne) {
  const Scratch folder;
  const host_test::SampleFiles files;
  host::Workspace workspace;
  host_test::openSample(files, workspace);
  fakes::writeVtc(folder.file("longer.vtc"), fakes::cellGrid(2, 2, 2, 77), std::vector<float>(8 * 77, 7));
  std::ostringstream out;
  Listener listener(out);
  host::LogPane pane(listener, true);
  const host::HostIdentity identity{{2, 3, 4}, "/opt/host", "/opt/host/plugins"};
  host::Run run{workspace, listener, pane, identity};
  zqGetIntegerInput("first volume", 1, 1, 9);
  EXPECT_EQ(listener.volumes, workspace.vtc()->header.nrOfVolumes);
  zqGetIntegerInput(("first volume in<br><i>" + folder.file("longer.vtc") + "</i>").c_str(), 1, 1, 9);
  EXPECT_EQ(listener.volumes, 77);
}

}  // namespace
