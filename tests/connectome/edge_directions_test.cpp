#include "connectome/edge_directions.h"

#include <gtest/gtest.h>

#include "tests/connectome/made_series.h"

namespace {

using connectome::EdgeDirection;

TEST(EdgeDirections, SupportTrueLeadsOfPairsThatPass) {
  const auto series = made::series(4, 400, 0.5, 3, {{0, 1, 0.6}, {3, 2, 0.6}});
  connectome::EdgeTests net(4);
  net.q.at(0, 1) = net.q.at(1, 0) = 0.01;
  net.q.at(2, 3) = net.q.at(3, 2) = 0.05;
  net.q.at(0, 2) = net.q.at(2, 0) = 0.2;
  const auto codes = connectome::edgeDirections(series, 1, net, 0.05, 7, 1);
  EXPECT_EQ(codes[0 * 4 + 1], EdgeDirection::kRowLeads);
  EXPECT_EQ(codes[1 * 4 + 0], EdgeDirection::kColumnLeads);
  EXPECT_EQ(codes[2 * 4 + 3], EdgeDirection::kColumnLeads);
  EXPECT_EQ(codes[0 * 4 + 2], EdgeDirection::kNotTested);
  EXPECT_EQ(codes, connectome::edgeDirections(series, 1, net, 0.05, 7, 3));
}

// The same signal, much noise in one: the cleaner one seems to lead, and reversed time says that it does not.
TEST(EdgeDirections, DoNotSupportALeadThatUnequalNoiseMakes) {
  int supported = 0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    auto series = made::series(3, 400, 0.8, seed);
    float* const values = series.runs[0].nodes.data();
    for (std::size_t t = 0; t < 400; ++t) {
      const float noise = values[800 + t] - 100;
      values[400 + t] = values[t] + 2 * noise * (t % 2 == 0 ? 1.0F : -1.0F);
    }
    connectome::EdgeTests net(3);
    net.q.at(0, 1) = 0.01;
    const auto code = connectome::edgeDirections(series, 1, net, 0.05, seed, 1)[1];
    supported += code == EdgeDirection::kRowLeads || code == EdgeDirection::kColumnLeads ? 1 : 0;
  }
  EXPECT_LE(supported, 4);
}

}  // namespace
