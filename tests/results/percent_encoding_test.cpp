#include "results/percent_encoding.h"

#include <gtest/gtest.h>

namespace {

using study::percentDecoded;
using study::percentEncoded;

TEST(PercentEncoding, LeavesPlainPathsAlone) {
  EXPECT_EQ(percentEncoded("sub-01/func/a_b.nii.gz~"), "sub-01/func/a_b.nii.gz~");
}

TEST(PercentEncoding, EscapesWhatNoUriMayHold) {
  EXPECT_EQ(percentEncoded("a b#%"), "a%20b%23%25");
  EXPECT_EQ(percentEncoded("\xc3\xa4"), "%C3%A4");
}

TEST(PercentEncoding, DecodesAllBytes) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(percentDecoded(percentEncoded(all)), all);
}

TEST(PercentEncoding, LeavesLonePercentSigns) {
  EXPECT_EQ(percentDecoded("50% of %zz%2"), "50% of %zz%2");
  EXPECT_EQ(percentDecoded("%41%2g"), "A%2g");
}

}  // namespace
