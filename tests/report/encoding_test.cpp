#include "report/encoding.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <vector>

namespace {

using namespace report;

// Test vectors of RFC 4648.
TEST(Base64, IsThatOfTheStandard) {
  EXPECT_EQ(base64(""), "");
  EXPECT_EQ(base64("f"), "Zg==");
  EXPECT_EQ(base64("fo"), "Zm8=");
  EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(base64("\xFB\xFF"), "+/8=");
}

TEST(Gzipped, ComesBackWhole) {
  std::vector<std::uint8_t> bytes(100000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * i >> 5U);
  const std::string packed = gzipped(bytes);
  std::vector<std::uint8_t> unpacked(bytes.size());
  z_stream state{};
  ASSERT_EQ(inflateInit2(&state, 15 + 16), Z_OK);
  std::string in = packed;
  state.next_in = reinterpret_cast<std::uint8_t*>(in.data());
  state.avail_in = static_cast<uInt>(in.size());
  state.next_out = unpacked.data();
  state.avail_out = static_cast<uInt>(unpacked.size());
  EXPECT_EQ(inflate(&state, Z_FINISH), Z_STREAM_END);
  inflateEnd(&state);
  EXPECT_EQ(unpacked, bytes);
  EXPECT_EQ(gzipped(bytes), packed);
}

TEST(PngUri, SaysItsKind) {
  EXPECT_EQ(pngUri("foo"), "data:image/png;base64,Zm9v");
}

}  // namespace
