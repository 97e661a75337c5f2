#include "workbench/route_table.h"

#include <gtest/gtest.h>

#include "tests/workbench/status_of.h"

namespace {

using workbench::Access;
using workbench::fits;

TEST(RouteTable, FitsPartsAndRests) {
  std::map<std::string, std::string> parts;
  EXPECT_TRUE(fits("/api/runs/{id}/cancel", "/api/runs/7/cancel", parts));
  EXPECT_EQ(parts["id"], "7");
  EXPECT_TRUE(fits("/files/{folder}/{path...}", "/files/a/b/c.txt", parts));
  EXPECT_EQ(parts["path"], "b/c.txt");
  EXPECT_TRUE(fits("/files/{folder}/{path...}", "/files/a//etc/passwd", parts));
  EXPECT_EQ(parts["path"], "/etc/passwd");
  EXPECT_TRUE(fits("/", "/", parts));
}

TEST(RouteTable, FitsNothingElse) {
  std::map<std::string, std::string> parts;
  EXPECT_FALSE(fits("/api/runs", "/api/runs/", parts));
  EXPECT_FALSE(fits("/api/runs", "/api/runs/7", parts));
  EXPECT_FALSE(fits("/api/runs", "/api/run", parts));
  EXPECT_FALSE(fits("/api/runs/{id}/cancel", "/api/runs//cancel", parts));
  EXPECT_FALSE(fits("/", "//", parts));
}

TEST(RouteTable, TellsUnknownPathsFromUnknownMethods) {
  workbench::RouteTable table;
  table.add({"POST", "/a", Access::kToken, 10, nullptr});
  table.add({"POST", "/b", Access::kToken, 30, nullptr});
  const auto status = [&](const char* method, const char* path) {
    return statusOf([&] {
      workbench::Request request;
      request.path = path;
      static_cast<void>(table.find(method, request));
    });
  };
  EXPECT_EQ(status("POST", "/a"), 0);
  EXPECT_EQ(status("GET", "/a"), 405);
  EXPECT_EQ(status("POST", "/c"), 404);
  EXPECT_EQ(table.largestBody(), 30U);
}

}  // namespace
