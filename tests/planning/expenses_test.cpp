#include "planning/expenses.h"

#include <gtest/gtest.h>

#include "planning/sizes.h"

namespace {

using planning::Expenses;
using planning::Sizes;

Sizes sizes() {
  Sizes sizes;
  sizes.gridVoxels = 272384;
  sizes.usedVoxels = 114400;
  sizes.longestRun = 160;
  sizes.references = sizes.conditions = 1;
  sizes.draws = 20;
  sizes.surrogates = 1000;
  return sizes;
}

// Peaks that were measured: simulated data sets, workers watched while they ran.
TEST(Sizes, MemoryIsWithinAQuarterOfWhatWasMeasured) {
  Sizes large = sizes();
  EXPECT_NEAR(planning::importMegabytes(large), 85.1, 21);
  EXPECT_NEAR(planning::referenceMegabytes(large, 1), 76.2, 19);
  EXPECT_NEAR(planning::referenceMegabytes(large, 9), 118.2, 29);
  large.conditions = 2;
  EXPECT_NEAR(planning::referenceMegabytes(large, 1), 86.0, 21);
  large = sizes();
  large.draws = 5;
  EXPECT_NEAR(planning::referenceMegabytes(large, 1), 58.4, 15);
  large.draws = 1;
  large.isPlugin = true;
  EXPECT_NEAR(planning::referenceMegabytes(large, 1), 34.5, 8.6);
  Sizes small = sizes();
  small.gridVoxels = 13440;
  small.usedVoxels = 5645;
  EXPECT_NEAR(planning::importMegabytes(small), 15.9, 4);
  EXPECT_NEAR(planning::referenceMegabytes(small, 1), 20.4, 5);
  EXPECT_NEAR(planning::referenceMegabytes(small, 9), 41.1, 10);
}

// Peaks of `tavmap report` on simulated data sets of one run.
TEST(Sizes, MemoryOfDrawingIsWithinAQuarterOfWhatWasMeasured) {
  struct Measured {
    double usedVoxels, references, megabytes;
  };
  for (const auto& [usedVoxels, references, megabytes] : {Measured{5480, 2, 27.2},
                                                          {43840, 2, 47.1},
                                                          {111066, 1, 51.0},
                                                          {111066, 2, 82.7},
                                                          {111066, 9, 148.4}}) {
    Sizes sizes;
    sizes.usedVoxels = usedVoxels;
    sizes.references = references;
    sizes.conditions = 1;
    EXPECT_NEAR(planning::reportMegabytes(sizes) / megabytes, 1, 0.25) << usedVoxels << " " << references;
  }
}

TEST(Sizes, MemoryAndDiskGrowWithEveryFigure) {
  const Sizes one = sizes();
  for (double Sizes::*figure : {&Sizes::usedVoxels, &Sizes::conditions}) {
    Sizes more = one;
    more.*figure *= 2;
    EXPECT_GT(planning::referenceMegabytes(more, 2), planning::referenceMegabytes(one, 2));
    EXPECT_GT(planning::resultMegabytes(more), planning::resultMegabytes(one));
    EXPECT_GT(planning::reportMegabytes(more), planning::reportMegabytes(one));
  }
  for (double Sizes::*figure : {&Sizes::draws, &Sizes::surrogates, &Sizes::longestRun}) {
    Sizes more = one;
    more.*figure *= 2;
    EXPECT_GT(planning::referenceMegabytes(more, 1), planning::referenceMegabytes(one, 1));
  }
  Sizes wide = one;
  wide.bytesPerValue = 8;
  EXPECT_GT(planning::importMegabytes(wide), planning::importMegabytes(one));
}

// A series beyond what an import keeps in memory waits on the disk.
TEST(Sizes, ImportsOfAnySizeHaveALimit) {
  Sizes huge = sizes();
  huge.usedVoxels = 1e7;
  EXPECT_LT(planning::importMegabytes(huge), 200);
}

TEST(Expenses, WorkersShareAllButThePages) {
  Expenses one;
  one.importSeconds = 10;
  one.referenceSeconds = 30;
  one.reportSeconds = 2;
  EXPECT_DOUBLE_EQ(one.seconds(), 42);
  EXPECT_DOUBLE_EQ(planning::elapsedSeconds({one, one}, 1), 84);
  EXPECT_DOUBLE_EQ(planning::elapsedSeconds({one, one}, 4), 24);
}

TEST(Expenses, LargestTakesEachFigureByItself) {
  Expenses a, b;
  a.importSeconds = 1;
  b.workerMegabytes = 2;
  b.reportMegabytes = 3;
  const Expenses largest = planning::largestOf({a, b});
  EXPECT_EQ(largest.importSeconds, 1);
  EXPECT_EQ(largest.workerMegabytes, 2);
  EXPECT_EQ(largest.reportMegabytes, 3);
}

TEST(Expenses, ASchedulerIsAskedForAMargin) {
  Expenses one;
  one.importSeconds = 60;
  one.referenceSeconds = 140;
  one.workerMegabytes = 110;
  EXPECT_EQ(planning::needsOfTask(one, 1, 1).minutes, 12);  // 3 x 200 s and 2 min
  EXPECT_EQ(planning::needsOfTask(one, 1, 3).minutes, 32);
  EXPECT_EQ(planning::needsOfTask(one, 1, 1).megabytes, 300);  // 1.5 x (110 + 50)
  EXPECT_EQ(planning::needsOfTask(one, 4, 1).megabytes, 800);
  EXPECT_EQ(planning::needsOfGroup(5).minutes, 10);
  EXPECT_EQ(planning::needsOfGroup(200).minutes, 30);
  one.reportSeconds = 60;
  one.reportMegabytes = 100;
  EXPECT_EQ(planning::needsOfReports(one, 10).minutes, 35);
  EXPECT_EQ(planning::needsOfReports(one, 10).megabytes, 200);
}

}  // namespace
