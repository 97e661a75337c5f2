#include "workbench/result_endpoints.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "results/record_json.h"
#include "tests/formats/sample_map_set.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"
#include "tests/workbench/status_of.h"

namespace {

using nlohmann::ordered_json;
using workbench::Reply;
using workbench::Request;

struct ResultEndpointsTest : testing::Test {
  Scratch scratch;
  workbench::FolderGuard folders;
  workbench::ReportKeys keys;
  workbench::RouteTable routes;

  ResultEndpointsTest() {
    std::filesystem::create_directories(data());
    folders.allow(data());
    routes.add(workbench::resultRoutes(folders, keys));
  }
  [[nodiscard]] std::filesystem::path data() const { return scratch.folder() / "data"; }
  void writeRecord(const std::string& folder, const std::string& prefix, const std::string& reference) {
    scratch.write("data/" + folder + "/" + prefix + "_seed-" + reference + "_tavmap.json",
                  study::recordText(sample_result::record()));
  }
  [[nodiscard]] Reply get(const std::string& path, std::map<std::string, std::string> query = {}) const {
    Request request;
    request.path = path;
    request.query = std::move(query);
    return routes.find("GET", request).handler(request);
  }
  [[nodiscard]] ordered_json list(const std::string& path = "") const {
    return ordered_json::parse(get("/api/results/list", {{"folder", "data"}, {"path", path}}).body);
  }
  [[nodiscard]] ordered_json overview() const {
    return ordered_json::parse(get("/api/results").body)["folders"];
  }
};

TEST_F(ResultEndpointsTest, FoldersThatLieInEachOtherAreListedOnce) {
  writeRecord("out", "sub-01", "V1");
  folders.allow(data() / "out");
  const ordered_json found = overview();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]["requests"], (ordered_json{"sub-01"}));
  EXPECT_TRUE(found[0]["index"].is_null());
}

TEST_F(ResultEndpointsTest, CountsOfAParticipantAreThoseOfAllItsRequests) {
  writeRecord("out", "sub-01_task-a", "V1");
  writeRecord("out", "sub-01_task-a", "V2");
  writeRecord("out", "sub-01_task-b", "V1");
  writeRecord("out", "sub-02_task-a", "V1");
  writeRecord("out", "nobody", "V1");
  scratch.write("data/out/sub-02_task-a_desc-failures_tavmap.tsv", "reference\tmessage\nV2\tgone\n");
  const ordered_json found = list("out");
  EXPECT_EQ(found["requests"].size(), 4U);
  EXPECT_TRUE(found["areAll"].get<bool>());
  EXPECT_EQ(found["participants"],
            (ordered_json{{{"participant", "sub-01"}, {"requests", 2}, {"references", 3}, {"failures", 0}},
                          {{"participant", "sub-02"}, {"requests", 1}, {"references", 1}, {"failures", 1}}}));
}

TEST_F(ResultEndpointsTest, MoreThanAThousandRequestsAreCutAndItSaysSo) {
  for (int i = 0; i < 1001; ++i)
    scratch.write("data/out/p" + std::to_string(i) + "_desc-failures_tavmap.tsv", "reference\tmessage\n");
  const ordered_json found = list();
  EXPECT_EQ(found["requests"].size(), 1000U);
  EXPECT_FALSE(found["areAll"].get<bool>());
}

// The key opens pages at or below its folder, and nothing else.
TEST_F(ResultEndpointsTest, AKeyOpensThePagesOfItsFolder) {
  writeRecord("out/sub-01", "sub-01", "V1");
  scratch.write("data/out/index.html", "index");
  scratch.write("data/out/sub-01/x.html", "page");
  scratch.write("data/out/sub-01/x.json", "{}");
  scratch.write("data/other/x.html", "other");
  std::filesystem::create_symlink(data() / "other/x.html", data() / "out/link.html");
  const std::string index = overview().at(0)["index"];
  ASSERT_TRUE(index.starts_with("reports/") && index.ends_with("/index.html")) << index;
  const std::string root = "/" + index.substr(0, index.rfind('/') + 1);
  EXPECT_EQ(get(root + "index.html").file, std::filesystem::canonical(data() / "out/index.html"));
  const Reply page = get(root + "sub-01/x.html");
  EXPECT_TRUE(page.isFromUser);
  EXPECT_EQ(page.type, "text/html; charset=utf-8");
  EXPECT_EQ(statusOf([&] { (void)get(root + "sub-01/x.json"); }), 403);
  EXPECT_EQ(statusOf([&] { (void)get(root + "link.html"); }), 403);
  EXPECT_EQ(statusOf([&] { (void)get(root + "../other/x.html"); }), 403);
  EXPECT_EQ(statusOf([&] { (void)get(root + "gone.html"); }), 404);
  EXPECT_EQ(statusOf([&] { (void)get("/reports/guessed/index.html"); }), 404);
}

TEST_F(ResultEndpointsTest, MapSetsAreFilesAndUnderlaysOfFolders) {
  scratch.write("data/a.txt", "x");
  EXPECT_EQ(statusOf([&] { (void)get("/api/maps", {{"folder", "data"}, {"path", ""}}); }), 404);
  EXPECT_EQ(statusOf([&] {
              (void)get("/api/results/underlays", {{"folder", "data"}, {"path", "a.txt"}, {"name", "x"}});
            }),
            404);
  formats::saveMapSet(scratch.file("data/a.tav"), formats_test::sampleMapSet());
  EXPECT_GT(get("/api/maps", {{"folder", "data"}, {"path", "a.tav"}}).body.size(), 100U);
}

}  // namespace
