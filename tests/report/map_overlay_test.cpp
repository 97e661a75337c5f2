#include "report/map_overlay.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace report;

TEST(OverlayScale, RunsFromTheThresholdToItsMultiple) {
  const OverlayScale scale = scaleOf(4.0, 3, 100, true);
  EXPECT_EQ(*scale.threshold, 4);
  EXPECT_EQ(scale.full, 12);
}

TEST(OverlayScale, EndsAtTheLargestMagnitudeWhenNothingSurvives) {
  const OverlayScale scale = scaleOf(std::nullopt, 3, 7, false);
  EXPECT_FALSE(scale.threshold);
  EXPECT_EQ(scale.full, 7);
  EXPECT_GT(scaleOf(std::nullopt, 3, 0, false).full, 0);
}

TEST(MapOverlay, IsOpaqueFromTheThresholdOn) {
  const MapOverlay overlay(scaleOf(4.0, 3, 100, true));
  for (const float value : {4.0F, -4.0F, 50.0F, -50.0F}) EXPECT_EQ(overlay.colour(value).alpha, 255) << value;
}

TEST(MapOverlay, IsFaintRatherThanHiddenBelowIt) {
  const MapOverlay overlay(scaleOf(4.0, 3, 100, true));
  const auto near = overlay.colour(3.9F).alpha, far = overlay.colour(2.0F).alpha;
  EXPECT_GT(far, 0);
  EXPECT_GT(near, far);
  EXPECT_LT(near, 128);
}

TEST(MapOverlay, TellsTheSignsApart) {
  const MapOverlay overlay(scaleOf(4.0, 3, 100, true));
  EXPECT_GT(overlay.colour(8).red, overlay.colour(8).blue);
  EXPECT_LT(overlay.colour(-8).red, overlay.colour(-8).blue);
}

TEST(MapOverlay, ShowsNothingWhereThereIsNoValue) {
  const MapOverlay overlay(scaleOf(4.0, 3, 100, false));
  EXPECT_EQ(overlay.colour(0).alpha, 0);
  EXPECT_EQ(overlay.colour(NAN).alpha, 0);
  EXPECT_EQ(overlay.colour(-8).alpha, 0);  // a kind without negative values
}

TEST(UnsupportedDirection, IsHalfAsStrong) {
  EXPECT_EQ(unsupported({10, 20, 30, 200}), (render::Rgba{10, 20, 30, 100}));
}

}  // namespace
