#include "io/crdutils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

VTC_Header boxOf(std::int32_t start, std::int32_t end, std::int32_t resolution) {
  VTC_Header header{};
  header.xStart = header.yStart = header.zStart = start;
  header.xEnd = header.yEnd = header.zEnd = end;
  header.resolution = resolution;
  header.nrOfVolumes = 1;
  return header;
}

}  // namespace

TEST(RoundHalfUp, RoundsHalvesUpForEverySign) {
  EXPECT_EQ(roundHalfUp(2.5), 3);
  EXPECT_EQ(roundHalfUp(-2.5), -2);
  EXPECT_EQ(roundHalfUp(-0.5), 0);
  EXPECT_EQ(roundHalfUp(-2.6), -3);
  EXPECT_EQ(roundHalfUp(2.49), 2);
}

TEST(RoundHalfUp, StaysInside32Bits) {
  EXPECT_EQ(roundHalfUp(1.0e12), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(roundHalfUp(-1.0e12), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(roundHalfUp(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<std::int32_t>::min());
}

TEST(AnatomicalCoordinates, TalairachIsTurnedAndMirrored) {
  const std::int32_t voxels[] = {10, -20, 30, 0, 0, 0};
  std::int32_t out[6];
  toAnatomicalCoordinates(voxels, 2, true, out);
  EXPECT_EQ((std::vector<std::int32_t>(out, out + 6)),
            (std::vector<std::int32_t>{148, 98, 118, 128, 128, 128}));
  toAnatomicalCoordinates(voxels, 2, false, out);
  EXPECT_EQ((std::vector<std::int32_t>(out, out + 3)), (std::vector<std::int32_t>{10, -20, 30}));
}

TEST(AnatomicalCoordinates, ExtremeTalairachValuesDoNotOverflow) {
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  const std::int32_t voxels[] = {kLowest, kLowest, kLowest};
  std::int32_t out[3];
  toAnatomicalCoordinates(voxels, 1, true, out);
  EXPECT_EQ(cellsOfVoxels(boxOf(0, 256, 1), out, 1).nrOutside, 1);
}

TEST(CellsOfVoxels, CountDistinctCellsInOrderOfFirstOccurrence) {
  const std::int32_t voxels[] = {9, 0, 0, 0, 0, 0, 8, 1, -1, 1, 1, 1};
  const VoiCells found = cellsOfVoxels(boxOf(0, 30, 3), voxels, 4);
  ASSERT_EQ(found.cells.size(), 2U);
  EXPECT_EQ(found.cells[0].x, 3);
  EXPECT_EQ(found.cells[0].n, 2) << "8 is nearer to 9 than to 6";
  EXPECT_EQ(found.cells[1].x, 0);
  EXPECT_EQ(found.cells[1].n, 2);
  EXPECT_EQ(found.nrOutside, 0);
}

TEST(CellsOfVoxels, ExactlyHalfACellAboveAStartBelongsToTheNextCell) {
  const std::int32_t voxels[] = {1, 0, 0};
  const VoiCells found = cellsOfVoxels(boxOf(0, 8, 2), voxels, 1);
  ASSERT_EQ(found.cells.size(), 1U);
  EXPECT_EQ(found.cells[0].x, 1);
}

TEST(CellsOfVoxels, OutsideTheBoxAreOnlyCounted) {
  const std::int32_t voxels[] = {-2, 0, 0, 0, 8, 0, 0, 0, 100000, 3, 3, 3};
  const VoiCells found = cellsOfVoxels(boxOf(0, 8, 2), voxels, 4);
  EXPECT_EQ(found.nrOutside, 3);
  ASSERT_EQ(found.cells.size(), 1U);
  EXPECT_EQ(found.cells[0].z, 2);
}
