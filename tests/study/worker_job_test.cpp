// Job files, and `tavmap worker` by hand.
#include "study/worker_job.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "formats/nifti.h"
#include "request/problem.h"
#include "request/request_file.h"
#include "tests/support/message_of.h"
#include "tests/support/run_command_fixture.h"

namespace study {
namespace {

namespace fs = std::filesystem;

class WorkerJobs : public SmallStudyRun {
 protected:
  void SetUp() override {
    SmallStudyRun::SetUp();
    plan_ = planStudy(readRequestFile(write()), 5, TAVMAP_VERSION);
    fs::create_directories(plan_.workFolder);
  }
  fs::path written(const WorkerJob& job) { return scratch_.write("a.job", jobText(job)); }
  ProgramResult work(const WorkerJob& job, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"worker", written(job).string()});
    return tavmap(more, folder());
  }
  void importAll() {
    for (std::size_t i = 0; i < plan_.runs.size(); ++i) ASSERT_EQ(work(importJob(plan_, i)).exitCode, 0);
  }
  StudyPlan plan_;
};

TEST_F(WorkerJobs, ReadBackAsTheyWereWritten) {
  for (const WorkerJob& job :
       {importJob(plan_, 1), orderJob(plan_), referencesJob(plan_, {0, 2}), referencesJob(plan_, {1}, 3)}) {
    const WorkerJob back = readJob(written(job));
    EXPECT_EQ(back.work, job.work);
    EXPECT_EQ(back.version, TAVMAP_VERSION);
    EXPECT_EQ(back.items, job.items);
    EXPECT_EQ(back.order, 1);
    EXPECT_EQ(back.threads, job.threads);
    EXPECT_EQ(back.expected, job.expected);
    EXPECT_EQ(back.request, job.request);
    EXPECT_EQ(back.request.seed, 5U);
  }
  EXPECT_EQ(importJob(plan_, 1).expected, (std::vector<std::string>{plan_.runs[1].vtcName}));
  EXPECT_EQ(referencesJob(plan_, {0, 2}).expected,
            (std::vector<std::string>{resultKey(plan_, 0), resultKey(plan_, 2)}));
}

TEST_F(WorkerJobs, DoneByHandGiveTheFilesOfAWholeRun) {
  importAll();
  const ProgramResult result = work(referencesJob(plan_, {0, 1, 2}));
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.err.find("100 %\n"), std::string::npos) << result.err;
  auto byHand = filesBelow(results());
  EXPECT_EQ(kept(run(folder() / "r.toml", {"--json"})), std::vector<bool>(3, true));
  fs::remove_all(results());
  ASSERT_EQ(run(folder() / "r.toml").exitCode, 0);
  auto whole = filesBelow(results());
  std::erase_if(whole, [](const auto& file) {  // what is written of a request, not of its references
    const auto begins = [&file](const char* words) { return file.first.starts_with(words); };
    return begins("README") || begins(".bidsignore") || begins("dataset_description.json") ||
           begins("small_desc-") || begins("small_request") || begins("small_report") || begins("figures/");
  });
  EXPECT_EQ(differingFiles(byHand, whole), "");
}

TEST_F(WorkerJobs, TheOrderEvidenceGoesToStandardOutput) {
  importAll();
  const ProgramResult result = work(orderJob(plan_));
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(nlohmann::json::parse(result.out, nullptr, false).is_object()) << result.out;
}

TEST_F(WorkerJobs, InputsThatChangedAreRefused) {
  const WorkerJob import = importJob(plan_, 1), references = referencesJob(plan_, {0});
  importAll();
  small_study::writeBold(folder() / "bold2.nii.gz", 77);
  for (const WorkerJob& job : {import, references, orderJob(plan_)}) {
    const ProgramResult result = work(job);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "tavmap: inputs of " + plan_.request.title +
                              " changed while it was being computed; repeat the command\n");
  }
  EXPECT_FALSE(fs::exists(results() / "small_seed-A_tavmap.json"));
  // The other run is what it was.
  EXPECT_EQ(work(importJob(plan_, 0)).exitCode, 0);
}

TEST_F(WorkerJobs, ItemsBeyondThePlanAreRefused) {
  WorkerJob job = referencesJob(plan_, {0});
  for (const std::vector<std::size_t>& items : {std::vector<std::size_t>{3}, {}}) {
    job.items = items;
    EXPECT_EQ(work(job).exitCode, 1);
  }
  job = importJob(plan_, 0);
  job.items = {2};
  EXPECT_EQ(work(job).exitCode, 1);
}

TEST_F(WorkerJobs, AnotherVersionsJobIsRefused) {
  WorkerJob job = importJob(plan_, 0);
  job.version = "0.9";
  const ProgramResult result = work(job);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "tavmap: the job was written by tavmap 0.9, and this is tavmap " TAVMAP_VERSION
                        "; repeat the command that wrote it\n");
}

TEST_F(WorkerJobs, WhatIsNoJobIsNamed) {
  for (const char* text : {"", "prefix = 'x'\n", "{}\n", "{\"Tavmap\": 1}\n"}) {
    const ProgramResult result = tavmap({"worker", scratch_.write("no.job", text).string()}, folder());
    EXPECT_EQ(result.exitCode, 2) << text;
    EXPECT_NE(result.err.find("no.job is no job of tavmap: "), std::string::npos) << result.err;
  }
  EXPECT_EQ(tavmap({"worker", (folder() / "nowhere.job").string()}, folder()).exitCode, 2);
}

TEST_F(WorkerJobs, NumbersThatDoNotFitAreRefused) {
  const std::string request = jobText(importJob(plan_, 0)).substr(jobText(importJob(plan_, 0)).find('\n'));
  const auto head = [](const std::string& items, const std::string& order) {
    return R"({"Tavmap": "1", "Work": "order", "Items": )" + items + ", \"Order\": " + order +
           R"(, "Expected": []})";
  };
  EXPECT_EQ(parseJob(head("[0, 7]", "2147483647") + request, "a.job").order, 2147483647);
  for (const char* items : {"[-1]", "[1.5]", "[1e300]", "3", "{\"a\": 1}"}) {
    const auto read = [&] { return parseJob(head(items, "1") + request, "a.job"); };
    EXPECT_NE(messageOf<InputError>(read).find("a.job is no job of tavmap: "), std::string::npos) << items;
  }
  for (const char* order : {"2147483648", "-1", "1e300", "\"1\""}) {
    const auto read = [&] { return parseJob(head("[0]", order) + request, "a.job"); };
    EXPECT_NE(messageOf<InputError>(read).find("a.job is no job of tavmap: "), std::string::npos) << order;
  }
}

TEST_F(WorkerJobs, AFileThatIsGoneIsNamedWithTheJobsLine) {
  const fs::path job = written(importJob(plan_, 0));
  fs::remove(folder() / "mask.nii.gz");
  const std::string message = messageOf<InputError>([&] { return readJob(job); });
  std::ifstream lines(job);
  int number = 0;
  for (std::string line; std::getline(lines, line) && line.rfind("mask", 0) != 0;) ++number;
  EXPECT_EQ(message.rfind(job.string() + ":" + std::to_string(number + 1) + ": 'mask' in [[run]]", 0), 0U)
      << message;
}

TEST_F(WorkerJobs, FailuresAreReportedOnThePipeAndAsExitCode) {
  const fs::path job = written(importJob(plan_, 0));
  const fs::path mask = folder() / "mask.nii.gz";
  const fs::path report = folder() / "report";
  // The shell stands for whoever made the pipe.
  const auto reported = [&] {
    const std::string script =
        std::string("exec " TAVMAP_PROGRAM " worker ") + job.string() + " --report-to 3 3>" + report.string();
    const int status = std::system(script.c_str());
    std::ifstream stream(report);
    std::string first;
    std::getline(stream, first);
    return std::make_pair(WEXITSTATUS(status), first.substr(0, first.find(' ')));
  };
  EXPECT_EQ(reported(), std::make_pair(0, std::string("result")));
  fs::rename(mask, folder() / "away");
  EXPECT_EQ(reported(), std::make_pair(2, std::string("wrong-input")));
  fs::rename(folder() / "away", mask);
  small_study::writeBold(folder() / "bold1.nii.gz", 77);
  EXPECT_EQ(reported(), std::make_pair(1, std::string("failed")));
}

TEST_F(WorkerJobs, AreNotInTheListOfVerbs) {
  EXPECT_EQ(tavmap({"--help"}, folder()).out.find("worker"), std::string::npos);
}

}  // namespace
}  // namespace study
