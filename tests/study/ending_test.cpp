// How `tavmap run` ends when it is not left in peace, and what it finds when it is repeated.
#include <signal.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;

// Waits up to 20 seconds.
template <typename Condition>
bool eventually(Condition condition) {
  for (int i = 0; i < 20000; ++i) {
    if (condition()) return true;
    usleep(1000);
  }
  return false;
}

// Neither there nor waiting to be waited for.
bool ended(pid_t pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string text;
  return !std::getline(stat, text) || text[text.rfind(')') + 2] == 'Z';
}

// Every name below the folder, hidden ones too, that is no result and no import.
std::set<std::string> leftovers(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name[0] == '.' && name != ".bidsignore") names.insert(name);
    if (name.rfind("import-", 0) == 0) names.insert(name);
  }
  return names;
}

bool hasEntry(const fs::path& folder, const std::string& begin, const std::string& file = "") {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    const bool found = entry.path().filename().string().rfind(begin, 0) == 0 && entry.is_directory(ignored);
    if (found && (file.empty() || fs::exists(entry.path() / file))) return true;
  }
  return false;
}

class Ending : public SmallStudyRun {
 protected:
  // So long that every test can act in time.
  fs::path longRequest() {
    std::string text = small_study::request("null_draws = 100");
    text.replace(text.find("surrogates = 60"), 15, "surrogates = 10000");
    return scratch_.write("r.toml", text);
  }
  // One whose imports are long: every voxel's course is filtered, twice as many volumes.
  fs::path longImports() {
    std::string table = "a\tb\tc\n";
    for (int v = 0; v < kLong; ++v) table += std::to_string(v % 7) + "\t" + std::to_string(v % 11) + "\t1\n";
    scratch_.write("c.tsv", table);
    small_study::writeBold(folder() / "bold1.nii.gz", 1, 1000, 2000, kLong);
    std::string text = small_study::request();
    text.insert(text.find("[[run]]\nname = 'run2'"), "confounds = 'c.tsv'\nregress = ['a', 'b']\n");
    return scratch_.write("r.toml", text);
  }
  fs::path work() const { return results() / "work"; }
  bool isImporting() const {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(work(), ignored)) {
      const bool own = entry.path().filename().string().rfind(".tavmap-import-", 0) == 0;
      if (own && entry.is_directory(ignored) && !fs::is_empty(entry.path(), ignored)) return true;
    }
    return false;
  }
  // Starts the request and kills the program, and with it its workers, in the middle of its imports.
  void killWhileImporting(const fs::path& request) {
    Program program({{"run", request.string(), "--jobs", "2"}, folder()});
    ASSERT_TRUE(eventually([&] { return isImporting() || !program.running(); }));
    const std::vector<pid_t> children = program.children();
    program.signal(SIGKILL);
    program.wait();
    for (const pid_t child : children) ASSERT_TRUE(eventually([&] { return ended(child); }));
  }
  std::vector<pid_t> childrenOf(Program& program, std::size_t count) {
    std::vector<pid_t> children;
    eventually([&] { return (children = program.children()).size() >= count || !program.running(); });
    return children;
  }
  static constexpr int kLong = 6000;
};

TEST_F(Ending, SigtermEndsLikeCtrlC) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const fs::path request = longRequest();
    Program program({{"run", request.string(), "--jobs", "2"}, folder()});
    const std::vector<pid_t> children = childrenOf(program, 2);
    ASSERT_EQ(children.size(), 2U);
    program.signal(signal);
    const ProgramResult result = program.wait();
    EXPECT_EQ(result.exitCode, 130) << signal;
    EXPECT_EQ(result.err.substr(result.err.rfind("tavmap:")),
              "tavmap: interrupted; what is finished stays, repeat the command to go on\n");
    for (const pid_t child : children) EXPECT_TRUE(ended(child)) << signal;
    EXPECT_EQ(leftovers(results()), std::set<std::string>()) << signal;
  }
}

TEST_F(Ending, CtrlCAtTheTerminalDoesNotReachTheWorkers) {
  Program program({{"run", longRequest().string(), "--jobs", "2"}, folder()});
  int told = 0;
  while (program.running()) {
    for (const pid_t child : program.children()) told += kill(child, SIGINT) == 0 ? 1 : 0;
    usleep(1000);
  }
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_GT(told, 10);
}

TEST_F(Ending, AKilledParentLeavesNoWorkers) {
  Program program({{"run", longRequest().string(), "--jobs", "2"}, folder()});
  // The workers of the references, which have something to write.
  ASSERT_TRUE(eventually([&] { return hasEntry(results(), ".tavmap-small+"); }));
  const std::vector<pid_t> children = program.children();
  ASSERT_FALSE(children.empty());
  program.signal(SIGKILL);
  program.wait();
  for (const pid_t child : children) EXPECT_TRUE(eventually([&] { return ended(child); })) << child;
  EXPECT_FALSE(fs::exists(results() / "small_seed-Cleft_tavmap.json"));
}

TEST_F(Ending, WhatAKilledImportLeavesTheNextRunSweeps) {
  const fs::path request = longImports();
  ASSERT_EQ(run(request, {"--jobs", "2"}).exitCode, 0);
  const auto undisturbed = filesBelow(results());
  // On a busy machine an import may end before the signal comes.
  bool caught = false;
  for (int attempt = 0; attempt < 20 && !caught; ++attempt) {
    fs::remove_all(results());
    killWhileImporting(request);
    caught = hasEntry(work(), ".tavmap-import-");
  }
  ASSERT_TRUE(caught);
  ASSERT_TRUE(hasEntry(work(), ".tavmap-jobs-"));
  ASSERT_EQ(run(request, {"--jobs", "2"}).exitCode, 0);
  EXPECT_EQ(leftovers(results()), std::set<std::string>());
  EXPECT_EQ(filesBelow(results()), undisturbed);
}

TEST_F(Ending, AnotherRunsTemporariesAreLeftAlone) {
  const fs::path request = longRequest();
  Program first({{"run", request.string()}, folder()});
  ASSERT_TRUE(eventually([&] { return hasEntry(results(), ".tavmap-small+"); }));
  // Another prefix in the same folders, begun and finished meanwhile.
  std::string text = small_study::request();
  text.replace(text.find("'small'"), 7, "'other'");
  const fs::path elsewhere = folder() / "second";
  fs::create_directories(elsewhere);
  ASSERT_EQ(tavmap({"run", scratch_.write("o.toml", text).string()}, elsewhere).exitCode, 0);
  ASSERT_TRUE(first.running()) << "the test came too late";
  EXPECT_TRUE(hasEntry(work(), ".tavmap-jobs-"));
  const ProgramResult result = first.wait();
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(leftovers(results()), std::set<std::string>());
}

TEST_F(Ending, TheSecondOfTwoIsToldWhoWorksThere) {
  const fs::path request = longRequest();
  Program first({{"run", request.string()}, folder()});
  ASSERT_TRUE(eventually([&] { return hasEntry(results(), ".tavmap-study-small"); }));
  const ProgramResult second = run(request);
  ASSERT_TRUE(first.running()) << "the test came too late";
  EXPECT_EQ(second.exitCode, 1);
  EXPECT_NE(second.err.find(results().string() +
                            ": another process is at work here under the same names: process " +
                            std::to_string(first.pid()) + " on "),
            std::string::npos)
      << second.err;
  first.signal(SIGKILL);
  first.wait();
  EXPECT_TRUE(hasEntry(results(), ".tavmap-study-small"));  // of a dead process, and no obstacle
  EXPECT_EQ(run(write()).exitCode, 0);
  EXPECT_EQ(leftovers(results()), std::set<std::string>());
}

TEST_F(Ending, ASummaryThatCannotBeWrittenIsAFailure) {
  const fs::path request = write();
  const ProgramResult result = tavmap({{"run", request.string(), "--json"},
                                       folder(),
                                       "",
                                       {"/bin/sh", "-c", R"(exec "$0" "$@" > /dev/full)"}});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("tavmap: cannot write to standard output ("), std::string::npos) << result.err;
  EXPECT_EQ(kept(run(request, {"--json"})),
            std::vector<bool>(3, true));  // the results are there all the same
}

TEST_F(Ending, ATruncatedMapIsMadeAgain) {
  const fs::path request = write();
  ASSERT_EQ(run(request).exitCode, 0);
  const auto before = filesBelow(results());
  const fs::path map = results() / (kMap + ".nii.gz");
  fs::resize_file(map, fs::file_size(map) - 1);
  EXPECT_EQ(kept(run(request, {"--json"})), (std::vector<bool>{false, true, true}));
  EXPECT_EQ(filesBelow(results()), before);
}

TEST_F(Ending, ForceComputesAgainWithEitherMethod) {
  for (const char* method : {"method = 'calibrated'", "method = 'plugin'"}) {
    const fs::path request = write(method), record = results() / "small_seed-B_tavmap.json";
    ASSERT_EQ(run(request).exitCode, 0);
    const auto first = fs::last_write_time(record);
    ASSERT_EQ(run(request).exitCode, 0);
    EXPECT_EQ(fs::last_write_time(record), first) << method;
    ASSERT_EQ(run(request, {"--force"}).exitCode, 0);
    EXPECT_GT(fs::last_write_time(record), first) << method;
    fs::remove_all(results());
  }
}

TEST_F(Ending, AnImportThatIsNotWholeIsMadeAgain) {
  const fs::path request = write();
  ASSERT_EQ(run(request).exitCode, 0);
  const auto before = filesBelow(results());
  std::vector<fs::path> imports;
  for (const auto& entry : fs::directory_iterator(work())) {
    if (entry.path().extension() == ".vtc") imports.push_back(entry.path());
  }
  ASSERT_EQ(imports.size(), 2U);
  const std::uintmax_t whole = fs::file_size(imports[0]);
  const auto repeat = [&] {
    EXPECT_EQ(run(request, {"--force"}).exitCode, 0);
    EXPECT_EQ(fs::file_size(imports[0]), whole);
    EXPECT_TRUE(fs::exists(imports[0].string() + ".json"));
    EXPECT_EQ(filesBelow(results()), before);
  };
  fs::remove(imports[0].string() + ".json");
  repeat();
  fs::resize_file(imports[0], whole - 4);
  repeat();
  fs::resize_file(imports[0], 0);
  repeat();
}

TEST_F(Ending, ADamagedFileThatOnlyAWorkerReadsIsExitCode2) {
  const fs::path bold = folder() / "bold2.nii.gz";
  fs::resize_file(bold, fs::file_size(bold) - 1000);
  const ProgramResult result = run(scratch_.write("r.toml", small_study::request()));
  EXPECT_EQ(result.exitCode, 2) << result.err;
  EXPECT_NE((result.out + result.err).find(bold.string()), std::string::npos) << result.out << result.err;
}

TEST_F(Ending, WrongInputThatOnlyAWorkerSeesIsExitCode2) {
  // Without masks, and no voxel as bright as that.
  std::string text = small_study::request("inclusion_threshold = 60000");
  for (std::size_t at; (at = text.find("mask = 'mask.nii.gz'\n")) != std::string::npos;) text.erase(at, 21);
  const ProgramResult result = run(scratch_.write("r.toml", text));
  EXPECT_EQ(result.exitCode, 2) << result.err;
  EXPECT_NE((result.out + result.err).find("import of run1: run 'run1': no voxel of "), std::string::npos)
      << result.out << result.err;
  EXPECT_EQ(leftovers(results()), std::set<std::string>());
  EXPECT_TRUE(fs::exists(work()));
  for (const auto& entry : fs::directory_iterator(work())) EXPECT_NE(entry.path().extension(), ".vtc");
}

}  // namespace
