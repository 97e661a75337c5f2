#include "workbench/dispatcher.h"

#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "request/problem.h"

namespace {

using workbench::Access;
using workbench::Reply;
using workbench::Request;

struct DispatcherTest : testing::Test {
  workbench::RouteTable routes;
  workbench::AccessGuard guard{1234};
  workbench::Dispatcher dispatcher{routes, guard};
  workbench::RequestHead head;

  DispatcherTest() {
    head.method = "GET";
    head.path = "/open";
    head.host = "127.0.0.1:1234";
  }
  void answerWith(const std::function<void()>& action) {
    routes.add({"GET", "/open", Access::kEverybody, 0, [action](const Request&) {
                  action();
                  return workbench::emptyReply();
                }});
  }
  [[nodiscard]] Reply answer() const {
    Request request;
    request.path = "/open";
    return dispatcher.answer("GET", request);
  }
  [[nodiscard]] int refused() const {
    const std::optional<Reply> reply = dispatcher.refusal(head);
    return reply ? reply->status : 0;
  }
};

TEST_F(DispatcherTest, ChecksBeforeItAnswers) {
  bool isAnswered = false;
  answerWith([&] { isAnswered = true; });
  EXPECT_EQ(refused(), 0);
  EXPECT_FALSE(isAnswered);
  head.host = "evil.example";
  EXPECT_EQ(refused(), 403);
  head.host = "127.0.0.1:1234";
  head.method = "PUT";
  EXPECT_EQ(refused(), 405);
  head.path = "/nowhere";
  EXPECT_EQ(refused(), 404);
  head.path = std::string("/open\0", 6);
  EXPECT_EQ(refused(), 400);
}

TEST_F(DispatcherTest, MakesRepliesOfExceptions) {
  answerWith([] { throw workbench::Refusal(409, "superseded"); });
  EXPECT_EQ(answer().status, 409);
  EXPECT_EQ(answer().body, R"({"message":"superseded"})");
}

TEST_F(DispatcherTest, TellsTheUsersFaultsFromOthers) {
  const auto statusFor = [](const std::function<void()>& action) {
    DispatcherTest_TellsTheUsersFaultsFromOthers_Test other;
    other.answerWith(action);
    return other.answer().status;
  };
  EXPECT_EQ(statusFor([] { throw study::InputError("x"); }), 400);
  EXPECT_EQ(statusFor([] { throw study::RunError("x"); }), 500);
  EXPECT_EQ(statusFor([] { throw formats::FileError("f", "r", "R"); }), 400);
  EXPECT_EQ(statusFor([] { throw formats::FileError("f", "r", "R", formats::Fault::kSystem); }), 500);
}

TEST(SecurityHeaders, TakeUsersFilesEveryRight) {
  Reply reply;
  EXPECT_EQ(workbench::securityHeaders(reply)["Content-Security-Policy"].find("sandbox"), std::string::npos);
  reply.isFromUser = true;
  EXPECT_EQ(workbench::securityHeaders(reply)["Content-Security-Policy"].find("sandbox allow-scripts"), 0U);
}

}  // namespace
