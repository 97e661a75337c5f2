// Repeating, interrupting, killing and parallelising `tavmap run`: the files stay the same.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

#include "tests/support/run_command_fixture.h"
#include "tests/support/scratch.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class Repeatability : public SmallStudyRun {};

TEST_F(Repeatability, ResultsDoNotDependOnTheNumberOfJobs) {
  const fs::path request = write();
  ASSERT_EQ(run(request, {"--jobs", "1"}).exitCode, 0);
  const auto one = filesBelow(results());
  ASSERT_GT(one.size(), 30U);
  for (const char* jobs : {"2", "3"}) {
    fs::remove_all(results());
    ASSERT_EQ(run(request, {"--jobs", jobs}).exitCode, 0);
    EXPECT_EQ(differingFiles(one, filesBelow(results())), "") << jobs;
  }
}

TEST_F(Repeatability, AReferenceDoesNotDependOnWhichOthersAreComputed) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const auto all = filesBelow(results());
  fs::remove_all(results());
  std::string text = small_study::request();
  text.replace(text.find("'all'"), 5, "'B'");
  ASSERT_EQ(run(scratch_.write("b.toml", text)).exitCode, 0);
  for (const auto& [name, content] : filesBelow(results())) {
    if (name.find("seed-B") == std::string::npos) continue;
    EXPECT_EQ(content, all.at(name)) << name;
  }
}

TEST_F(Repeatability, AnotherSeedGivesOtherThresholds) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const auto before = filesBelow(results());
  ASSERT_EQ(run(write(), {"--seed", "6", "--force"}).exitCode, 0);
  const auto after = filesBelow(results());
  EXPECT_EQ(after.at(kMap + ".nii.gz"),
            before.at(kMap + ".nii.gz"));  // the effect itself is no matter of luck
  EXPECT_NE(after.at(kMap + ".json"), before.at(kMap + ".json"));
}

TEST_F(Repeatability, WithoutASeedOneIsDrawnStoredAndUsedAgain) {
  std::string text = small_study::request();
  text.erase(text.find("seed = 5\n"), 9);
  const fs::path request = scratch_.write("r.toml", text);
  ASSERT_EQ(run(request).exitCode, 0);
  EXPECT_TRUE(read(kMap + ".json")["Seed"].is_number());
  const ProgramResult again = run(request, {"--json"});
  EXPECT_EQ(kept(again), std::vector<bool>(3, true));
}

TEST_F(Repeatability, ARepeatedCommandKeepsWhatIsFinished) {
  const fs::path request = write();
  ASSERT_EQ(run(request).exitCode, 0);
  const auto before = filesBelow(results());
  EXPECT_EQ(kept(run(request, {"--json"})), std::vector<bool>(3, true));
  fs::remove(results() / (kMap + ".nii.gz"));
  EXPECT_EQ(kept(run(request, {"--json"})), (std::vector<bool>{false, true, true}));
  EXPECT_EQ(kept(run(request, {"--json", "--force"})), std::vector<bool>(3, false));
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
  const fs::path map = results() / (kMap + ".nii.gz");
  fs::resize_file(map, fs::file_size(map) - 1);
  EXPECT_EQ(kept(run(request, {"--json"})), (std::vector<bool>{false, true, true}));
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
}

TEST_F(Repeatability, ChangedInputIsNoticed) {
  const fs::path request = write();
  ASSERT_EQ(run(request).exitCode, 0);
  small_study::writeBold(folder() / "bold2.nii.gz", 77);
  const ProgramResult refused = run(request);
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.err.find((folder() / "bold2.nii.gz").string() + " was changed since"), std::string::npos)
      << refused.err;
  EXPECT_EQ(kept(run(request, {"--json", "--force"})), std::vector<bool>(3, false));
}

TEST_F(Repeatability, ADeadWorkerIsNamedAndTheOthersFinish) {
  std::string text = small_study::request("null_draws = 100");
  text.replace(text.find("surrogates = 60"), 15, "surrogates = 10000");
  const fs::path request = scratch_.write("r.toml", text);
  Program program({{"run", request.string(), "--jobs", "3"}, folder()});
  pid_t victim = -1;
  for (int i = 0; i < 20000 && victim < 0 && program.running(); ++i) {
    usleep(1000);
    // Three at a time are the references; the imports are two.
    const std::vector<pid_t> children = program.children();
    if (children.size() == 3) victim = children[1];
  }
  ASSERT_GT(victim, 0);
  kill(victim, SIGKILL);
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("B: the worker process was ended by signal 9 (Killed)"), std::string::npos)
      << result.err;
  EXPECT_TRUE(fs::exists(results() / "small_seed-A_tavmap.json"));
  EXPECT_FALSE(fs::exists(results() / "small_seed-B_tavmap.json"));
  EXPECT_TRUE(fs::exists(results() / "small_seed-Cleft_tavmap.json"));
}

TEST_F(Repeatability, ReferencesOfADeadWorkerAreTriedAgainOneByOne) {
  std::string text = small_study::request("null_draws = 100");
  text.replace(text.find("surrogates = 60"), 15, "surrogates = 10000");
  const fs::path request = scratch_.write("r.toml", text);
  ASSERT_EQ(run(request, {"--jobs", "1"}).exitCode, 0);
  const auto undisturbed = filesBelow(results());
  Program program({{"run", request.string(), "--jobs", "1", "--force"}, folder()});
  pid_t victim = -1;
  for (int i = 0; i < 20000 && victim < 0 && program.running(); ++i) {
    usleep(1000);
    // The imports are kept, so that the first child has all references.
    const std::vector<pid_t> children = program.children();
    if (children.size() == 1) victim = children[0];
  }
  ASSERT_GT(victim, 0);
  kill(victim, SIGKILL);
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err.find("FAILED"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("tried again one by one: "), std::string::npos) << result.err;
  EXPECT_EQ(differingFiles(undisturbed, filesBelow(results())), "");
}

TEST_F(Repeatability, InterruptingSaysSoAndLeavesNoHalfFile) {
  std::string text = small_study::request("null_draws = 100");
  text.replace(text.find("surrogates = 60"), 15, "surrogates = 10000");
  const fs::path request = scratch_.write("r.toml", text);
  Program program({{"run", request.string()}, folder()});
  for (int i = 0; i < 20000 && program.running() && !fs::exists(results() / "small_seed-A_tavmap.json"); ++i)
    usleep(1000);
  program.signal(SIGINT);
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 130);
  EXPECT_EQ(result.err.substr(result.err.rfind("tavmap:")),
            "tavmap: interrupted; what is finished stays, repeat the command to go on\n");
  for (const auto& [name, content] : filesBelow(results())) {
    if (fs::path(name).extension() != ".json") continue;
    EXPECT_FALSE(json::parse(content, nullptr, false).is_discarded()) << name;
  }
  EXPECT_EQ(kept(run(request, {"--json"}))[0], true);
}

// Kills the program at many moments of its life and repeats the command each time.
TEST_F(Repeatability, KilledAnywhereARepetitionEndsInTheSameFiles) {
  const fs::path request = write();
  ASSERT_EQ(run(request).exitCode, 0);
  const auto undisturbed = filesBelow(results());
  const int kills = std::getenv("TAVMAP_KILLS") == nullptr ? 6 : std::atoi(std::getenv("TAVMAP_KILLS"));
  const auto start = std::chrono::steady_clock::now();
  fs::remove_all(results());
  ASSERT_EQ(run(request, {"--jobs", "2"}).exitCode, 0);
  const std::chrono::duration<double, std::micro> whole = std::chrono::steady_clock::now() - start;
  unsigned state = 12345;
  fs::remove_all(results());
  for (int i = 0; i < kills; ++i) {
    Program program({{"run", request.string(), "--jobs", "2"}, folder()});
    state = state * 1103515245U + 12345U;
    usleep(static_cast<useconds_t>(whole.count() * ((state >> 8U) % 1000U) / 1000.0));
    program.signal(SIGKILL);
    program.wait();
    if (i % 3 == 2) fs::remove_all(results());
  }
  ASSERT_EQ(run(request, {"--jobs", "2"}).exitCode, 0);
  EXPECT_EQ(differingFiles(undisturbed, filesBelow(results())), "");
  for (const auto& entry : fs::directory_iterator(results())) {
    EXPECT_EQ(entry.path().filename().string().rfind(".tavmap-", 0), std::string::npos) << entry.path();
  }
}

}  // namespace
