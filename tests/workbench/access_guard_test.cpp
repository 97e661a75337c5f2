#include "workbench/access_guard.h"

#include <gtest/gtest.h>

#include "tests/workbench/status_of.h"
#include "workbench/secret.h"

namespace {

using workbench::Access;
using workbench::AccessGuard;
using workbench::RequestHead;

struct AccessGuardTest : testing::Test {
  AccessGuard guard{8765};
  RequestHead head;
  AccessGuardTest() {
    head.method = "POST";
    head.host = "127.0.0.1:8765";
    head.origin = "http://127.0.0.1:8765";
    const std::string cookie = guard.cookieFor(guard.token());
    head.cookie = "other=1; " + cookie.substr(0, cookie.find(';'));
    head.token = guard.token();
    head.contentLength = "2";
    head.contentType = "application/json";
  }
  [[nodiscard]] int ofPage() const {
    return statusOf([this] { guard.requireOwnPage(head); });
  }
  [[nodiscard]] int of(Access access) const {
    return statusOf([&] { guard.require(access, head); });
  }
  [[nodiscard]] int ofBody(std::size_t bound) const {
    return statusOf([&] { workbench::requireBodyWithin(bound, head); });
  }
};

TEST_F(AccessGuardTest, LetsItsOwnPageIn) {
  EXPECT_EQ(ofPage(), 0);
  EXPECT_EQ(of(Access::kToken), 0);
  head.host = "localhost:8765";
  head.origin = "http://localhost:8765";
  EXPECT_EQ(ofPage(), 0);
}

TEST_F(AccessGuardTest, RefusesOtherHosts) {
  for (const char* host :
       {"", "127.0.0.1", "127.0.0.1:8766", "evil.example:8765", "127.0.0.1:8765.evil.example"}) {
    head.host = host;
    EXPECT_EQ(ofPage(), 403) << host;
  }
}

TEST_F(AccessGuardTest, RefusesOtherOrigins) {
  for (const char* origin :
       {"null", "https://127.0.0.1:8765", "http://evil.example", "http://localhost:8765"}) {
    head.origin = origin;
    EXPECT_EQ(ofPage(), 403) << origin;
  }
}

TEST_F(AccessGuardTest, WantsTheCookieAndThenTheToken) {
  head.token = "";
  EXPECT_EQ(of(Access::kSession), 0);
  EXPECT_EQ(of(Access::kToken), 403);
  head.token = guard.token() + "0";
  EXPECT_EQ(of(Access::kToken), 403);
  head.cookie = "tavmap_8765=" + guard.token();
  EXPECT_EQ(of(Access::kSession), 401);
  EXPECT_EQ(of(Access::kEverybody), 0);
}

TEST_F(AccessGuardTest, GivesTheCookieForTheTokenAlone) {
  EXPECT_EQ(statusOf([this] { static_cast<void>(guard.cookieFor("")); }), 403);
  EXPECT_NE(guard.cookieFor(guard.token()).find("HttpOnly; SameSite=Strict"), std::string::npos);
}

TEST_F(AccessGuardTest, AnotherStartHasOtherSecrets) {
  const AccessGuard other(8765);
  EXPECT_NE(other.token(), guard.token());
  EXPECT_EQ(statusOf([&] { other.require(Access::kSession, head); }), 401);
}

TEST_F(AccessGuardTest, BoundsBodies) {
  EXPECT_EQ(ofBody(2), 0);
  EXPECT_EQ(ofBody(1), 413);
  head.contentLength = "99999999999999999999999";
  EXPECT_EQ(ofBody(2), 413);
  head.contentLength = "2x";
  EXPECT_EQ(ofBody(2), 400);
  head.contentLength = "";
  EXPECT_EQ(ofBody(2), 411);
}

TEST_F(AccessGuardTest, TakesPlainJsonAlone) {
  head.contentType = "text/plain";
  EXPECT_EQ(ofBody(2), 415);
  head.contentType = "application/json";
  head.encoding = "gzip";
  EXPECT_EQ(ofBody(2), 415);
}

TEST(Secret, IsComparedAsAWhole) {
  EXPECT_TRUE(workbench::isSameSecret("abc", "abc"));
  EXPECT_FALSE(workbench::isSameSecret("abd", "abc"));
  EXPECT_FALSE(workbench::isSameSecret("ab", "abc"));
  EXPECT_EQ(workbench::newSecret().size(), 64U);
}

}  // namespace
