#include "formats/probability_atlas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/formats/nifti_bytes.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using Labels = std::vector<std::int32_t>;
using Volumes = std::vector<std::vector<double>>;

class ProbabilityAtlas : public testing::Test {
 protected:
  // Four voxels, a list per volume.
  formats::MostProbableLabels read(const Volumes& volumes, double least) {
    formats_test::NiftiSpec spec;
    spec.dim = {4, 4, 1, 1, static_cast<std::int64_t>(volumes.size()), 1, 1, 1};
    std::vector<double> values;
    for (const auto& volume : volumes) values.insert(values.end(), volume.begin(), volume.end());
    scratch_.write("atlas.nii", formats_test::niftiHeader(spec) + formats_test::niftiData(spec, values));
    return formats::readMostProbableLabels(scratch_.file("atlas.nii"), least);
  }
  Scratch scratch_;
};

TEST_F(ProbabilityAtlas, TheLargestProbabilityNamesTheVolume) {
  const auto most = read({{0.6, 0.2, 0.5, 0}, {0.3, 0.7, 0.5, 0}, {0.1, 0.1, 0, 0.4}}, 0.3);
  EXPECT_EQ(most.image.labels, (Labels{1, 2, 1, 3}));  // of equal ones the first
  EXPECT_EQ(most.volumes, 3);
  EXPECT_FALSE(most.inPercent);
  EXPECT_EQ(most.image.header.volumes, 1);
}

TEST_F(ProbabilityAtlas, TheLeastProbabilityBelongsToTheLabel) {
  EXPECT_EQ(read({{0.5, 0.499, 0.7, 1}}, 0.5).image.labels, (Labels{1, 0, 1, 1}));
  EXPECT_EQ(read({{0.5, 0.499, 0.7, 1}}, 0.7).image.labels, (Labels{0, 0, 1, 1}));  // 0.7 as float is less
  EXPECT_EQ(read({{0.5, 0.499, 0.7, 1}}, 1).image.labels, (Labels{0, 0, 0, 1}));
}

TEST_F(ProbabilityAtlas, ValuesBeyondOneArePerCent) {
  const auto most = read({{50, 49, 1, 0}, {2, 51, 0, 0.5}}, 0.5);
  EXPECT_TRUE(most.inPercent);
  EXPECT_EQ(most.image.labels, (Labels{1, 2, 0, 0}));
}

TEST_F(ProbabilityAtlas, WhatIsNotFiniteCountsAsZero) {
  EXPECT_EQ(
      read({{std::nan(""), 1, std::numeric_limits<double>::infinity(), 0}, {0.6, 0, 0, 0}}, 0.5).image.labels,
      (Labels{2, 1, 0, 0}));
}

TEST_F(ProbabilityAtlas, WhatIsNoProbabilityIsRefused) {
  const std::string rest =
      ", which is no probability. Give an image of one volume per label with values from 0 to 1, or 0 to 100 "
      "per cent.";
  EXPECT_EQ(reasonOf([&] { (void)read({{0, -0.5, 0, 0}}, 0.5); }), "it holds -0.5" + rest);
  EXPECT_EQ(reasonOf([&] { (void)read({{0, 0, 0, 0}, {0, 101, 0, 0}}, 0.5); }), "it holds 101" + rest);
}

}  // namespace
