#include <gtest/gtest.h>

#include "hostapi/CNZQPluginInterfaceExtern.h"

namespace static_intf {
bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3);
}

namespace {

struct Case {
  int major, minor, patch;
  bool enough;  // for 2.1.0
};

class Version : public testing::TestWithParam<Case> {};

TEST_P(Version, IsComparedLexicographically) {
  const Case& host = GetParam();
  EXPECT_EQ(checkVersionGreaterEqualVersion(host.major, host.minor, host.patch, 2, 1, 0), host.enough);
  EXPECT_EQ(static_intf::checkVersionGreaterEqualVersion(host.major, host.minor, host.patch, 2, 1, 0),
            host.enough);
}

INSTANTIATE_TEST_SUITE_P(AgainstTwoOneZero, Version,
                         testing::Values(Case{2, 0, 9, false}, Case{2, 1, 0, true}, Case{3, 0, 0, true},
                                         Case{2, 2, -1, true}, Case{2, 1, -1, false}, Case{2, 1, 1, true},
                                         Case{1, 9, 9, false}, Case{1, 1, 0, false}, Case{0, 0, 0, false}));

TEST(Version, PatchLevelDecidesLast) {
  EXPECT_TRUE(checkVersionGreaterEqualVersion(2, 1, 5, 2, 1, 5));
  EXPECT_FALSE(checkVersionGreaterEqualVersion(2, 1, 4, 2, 1, 5));
}

}  // namespace
