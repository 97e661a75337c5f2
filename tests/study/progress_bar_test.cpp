#include "study/progress_bar.h"

#include <gtest/gtest.h>

#include <sstream>

namespace study {
namespace {

TEST(ProgressBar, ShowsShareAndTimeLeft) {
  EXPECT_EQ(progressLine(0.5, 65), "[###############...............]  50 %, 1 min 05 s left");
  EXPECT_EQ(progressLine(0, 10), "[..............................]   0 %");
  EXPECT_EQ(progressLine(1, 10), "[##############################] 100 %");
}

TEST(ProgressBar, WritesDurationsInTwoUnits) {
  EXPECT_EQ(durationText(45.4), "45 s");
  EXPECT_EQ(durationText(65), "1 min 05 s");
  EXPECT_EQ(durationText(7380), "2 h 03 min");
}

TEST(ProgressBar, WritesPlainLinesWithoutATerminal) {
  std::ostringstream text;
  ProgressBar bar(text, ProgressStyle::kLines);
  WorkPiece piece;
  piece.name = "V1";
  bar.onProgress(1, 2);
  bar.onFinished(piece, {true, false, "", ""});
  bar.onFinished(piece, {false, false, "no space", ""});  // whoever knows what it means says so
  bar.fail("V1: no space");
  EXPECT_EQ(text.str(), "done: V1\nFAILED: V1: no space\n");
}

TEST(ProgressBar, QuietStillReportsFailures) {
  std::ostringstream text;
  ProgressBar bar(text, ProgressStyle::kQuiet);
  WorkPiece piece;
  piece.name = "V1";
  bar.onProgress(1, 2);
  bar.onFinished(piece, {true, false, "", ""});
  EXPECT_EQ(text.str(), "");
  bar.fail("V1: no space");
  EXPECT_EQ(text.str(), "FAILED: V1: no space\n");
}

TEST(ProgressBar, WhatIsTriedAgainInPartsHasNotFailed) {
  WorkPiece piece;
  piece.name = "V1 and 2 more";
  piece.isTriedInParts = true;
  for (const ProgressStyle style : {ProgressStyle::kLines, ProgressStyle::kQuiet}) {
    std::ostringstream text;
    ProgressBar(text, style).onFinished(piece, {false, false, "no space", ""});
    EXPECT_EQ(text.str(),
              style == ProgressStyle::kQuiet ? "" : "tried again one by one: V1 and 2 more: no space\n");
  }
}

TEST(ProgressBar, RedrawsItsLineOnATerminal) {
  std::ostringstream text;
  {
    ProgressBar bar(text, ProgressStyle::kBar);
    bar.onProgress(0, 2);
    bar.onProgress(0, 2);
  }
  EXPECT_EQ(text.str(), "\r\033[K" + progressLine(0, 0) + "\r\033[K");
}

}  // namespace
}  // namespace study
