// Whole sessions of the plug-in under the stand-in host, on a small data set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "formats/map_set.h"
#include "tests/app/noise_data.h"
#include "tests/app/pseudo_terminal.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using app_test::NoiseData;
using app_test::PseudoTerminal;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// The answers of a session, one a dialog.
const std::vector<std::string> kManual = {
    "integer 1",     "integer 0",  "integer 1",   "text all", "open run1.vtc", "integer 1", "integer 120",
    "open run2.vtc", "integer 10", "integer 110", "cancel",   "text",          "save maps"};
const std::vector<std::string> kProtocol = {
    "integer 3", "integer 2",        "text face",     "open run1.vtc",    "open events.tsv", "integer 1",
    "cancel",    "text second half", "open run2.vtc", "open volumes.tsv", "integer 2",       "cancel",
    "text",      "save maps"};

std::string asScript(const std::vector<std::string>& answers) {
  std::string script;
  for (const std::string& answer : answers) script += answer + "\n";
  return script;
}

// What a person types for an answer: the value after the tag, or the word itself.
std::string asTyped(const std::vector<std::string>& answers) {
  std::string typed;
  for (const std::string& answer : answers) {
    const std::size_t blank = answer.find(' ');
    const bool isWord = answer == "cancel" || answer == "yes" || answer == "no";
    const bool isMessage = answer.rfind("message", 0) == 0;
    typed += isWord ? answer : isMessage || blank == std::string::npos ? "" : answer.substr(blank + 1);
    typed += "\n";
  }
  return typed;
}

struct HostSession : testing::Test {
  NoiseData data;

  std::vector<std::string> arguments(std::vector<std::string> more) const {
    std::vector<std::string> all = {"host",     TAVMAP_PLUGIN, "--anatomy", "t1.nii",           "--vtc",
                                    "run1.vtc", "--vois",      "vois.json", "--plugins-folder", "."};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  ProgramResult scripted(const std::vector<std::string>& answers, const std::string& seed = "7") const {
    data.folder.write("answers.txt", asScript(answers));
    return tavmap(arguments({"--seed", seed, "--script", "answers.txt"}), data.folder.path());
  }
  ProgramResult typed(const std::string& input) const {
    return tavmap(ProgramStart{arguments({"--seed", "7"}), data.folder.folder(), input});
  }
  std::string content(const std::string& name) const { return contentOf(data.folder / name); }
  bool exists(const std::string& name) const { return std::filesystem::exists(data.folder / name); }
};

float meanWhere(const formats::MapSet& set, const formats::Map& map, bool (*wanted)(int x, int z)) {
  float sum = 0;
  int count = 0;
  const formats::GridSize size = set.grid();
  for (int z = 0; z < size.z; ++z)
    for (int y = 0; y < size.y; ++y)
      for (int x = 0; x < size.x; ++x)
        if (wanted(x, z)) sum += map.values[size.index(x, y, z)], ++count;
  return sum / static_cast<float>(count);
}

TEST_F(HostSession, ComputesAndSavesMapsThatShowTheInfluence) {
  const ProgramResult run = scripted(kManual);
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(run.err, "");
  const formats::MapSet set = formats::loadMapSet(data.folder / "maps_driver.tav");
  ASSERT_EQ(set.maps.size(), 6U);
  EXPECT_EQ(set.thresholdNames[0], "thres q=0.010");
  const formats::Map& ref2vox = set.maps[0];
  const formats::Map& vox2ref = set.maps[1];
  EXPECT_EQ(ref2vox.name, "all: Ref2Vox");
  const auto led = [](int x, int z) { return x >= 4 && z > 0; };
  const auto apart = [](int x, int z) { return (x == 2 || x == 3) && z > 0; };
  const auto excluded = [](int, int z) { return z == 0; };
  EXPECT_GT(meanWhere(set, ref2vox, led), 5 * meanWhere(set, ref2vox, apart));
  EXPECT_GT(meanWhere(set, ref2vox, led), 5 * meanWhere(set, vox2ref, led));
  EXPECT_EQ(meanWhere(set, ref2vox, excluded), 0.0F);
  EXPECT_GT(ref2vox.thresholds[1], 0.0F);
  EXPECT_LT(ref2vox.thresholds[1], meanWhere(set, ref2vox, led));
}

TEST_F(HostSession, WritesTheLogBesideTheMaps) {
  ASSERT_EQ(scripted(kManual).exitCode, 0);
  EXPECT_THAT(
      content("maps_driver.log"),
      AllOf(HasSubstr("Created by TAV-plugin version 1.5\n"), HasSubstr("NumSurrogateSimulations= 50\n"),
            HasSubstr("\t\t10\t-\t110\n"), HasSubstr("Voxels skipped: 48\t(25%)")));
}

TEST_F(HostSession, PrintsLogAndSummary) {
  const ProgramResult run = scripted(kManual);
  EXPECT_THAT(run.out, AllOf(HasSubstr("Tavmap Mapping (TAV) v1.5\n"),
                             HasSubstr("// TAV> Done, all computations succesful\n"),
                             HasSubstr("Map sets written:\n  " + (data.folder / "maps_driver.tav") + "\n"),
                             HasSubstr("  all: Ref2Vox\n    thres q=0.010: "), HasSubstr("    peak: ")));
  EXPECT_THAT(run.out, Not(HasSubstr("<b>")));
}

TEST_F(HostSession, GivesTheSameFilesForTheSameSeed) {
  ASSERT_EQ(scripted(kManual).exitCode, 0);
  const std::string maps = content("maps_driver.tav"), log = content("maps_driver.log");
  ASSERT_EQ(scripted(kManual).exitCode, 0);
  EXPECT_EQ(content("maps_driver.tav"), maps);
  EXPECT_EQ(content("maps_driver.log"), log);
  ASSERT_EQ(scripted(kManual, "8").exitCode, 0);
  EXPECT_NE(content("maps_driver.tav"), maps);
}

TEST_F(HostSession, GivesTheSameFilesTypedAtTheTerminal) {
  for (const std::vector<std::string>& answers : {kManual, kProtocol}) {
    ASSERT_EQ(scripted(answers).exitCode, 0);
    const std::string maps = content("maps_driver.tav"), log = content("maps_driver.log");
    std::filesystem::remove(data.folder / "maps_driver.tav");
    const ProgramResult run = typed(asTyped(answers));
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_EQ(content("maps_driver.tav"), maps);
    EXPECT_EQ(content("maps_driver.log"), log);
  }
}

TEST_F(HostSession, TakesIntervalsFromProtocolsOfEitherTimeUnit) {
  const ProgramResult run = scripted(kProtocol);
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const std::string name : {"maps_driver.log", "maps_other.log"})
    EXPECT_THAT(content(name),
                AllOf(HasSubstr("\t\t1\t-\t30\n\t\t61\t-\t90\n"), HasSubstr("\t\t61\t-\t120\n")));
  EXPECT_EQ(formats::loadMapSet(data.folder / "maps_other.tav").maps.size(), 12U);
}

// --- leaving early ---

TEST_F(HostSession, CanBeCancelledAtEveryQuestion) {
  for (const std::vector<std::string>& answers : {kManual, kProtocol}) {
    for (std::size_t at = 0; at < answers.size(); ++at) {
      if (answers[at].rfind("open run", 0) == 0 || answers[at] == "cancel") continue;  // ends a list of VTCs
      std::vector<std::string> cancelled(answers.begin(), answers.begin() + static_cast<std::ptrdiff_t>(at));
      cancelled.emplace_back("cancel");
      for (const ProgramResult& run : {scripted(cancelled), typed(asTyped(cancelled))}) {
        EXPECT_EQ(run.exitCode, 1) << "cancelled at " << answers[at];
        EXPECT_THAT(run.out, HasSubstr("// TAV> Canceled by user.\n")) << "cancelled at " << answers[at];
        EXPECT_EQ(run.err, "tavmap: The plug-in did not complete its run; its log or message says why.\n");
      }
    }
  }
  EXPECT_FALSE(exists("maps_driver.tav"));
}

TEST_F(HostSession, AsksAgainWhenTheFirstVtcIsCancelled) {
  std::vector<std::string> answers = kManual;
  answers.insert(answers.begin() + 4, {"cancel", "message You have select at least one VTC"});
  EXPECT_EQ(scripted(answers).exitCode, 0);
  EXPECT_EQ(typed(asTyped(answers)).exitCode, 0);
}

TEST_F(HostSession, EndsAtAnyDialogByQuit) {
  for (std::size_t at = 0; at < kManual.size(); ++at) {
    const std::vector<std::string> before(kManual.begin(), kManual.begin() + static_cast<std::ptrdiff_t>(at));
    const ProgramResult run = typed(asTyped(before) + "quit\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "tavmap: Ended by \"quit\".\n");
  }
}

TEST_F(HostSession, EndsWhenTheInputEndsAtAnyDialog) {
  for (std::size_t at = 0; at < kManual.size(); ++at) {
    const std::vector<std::string> before(kManual.begin(), kManual.begin() + static_cast<std::ptrdiff_t>(at));
    const ProgramResult run = typed(asTyped(before));
    EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  }
}

TEST_F(HostSession, EndsWithTheDialogsTextWhenTheScriptDoesNotFit) {
  for (std::size_t at = 0; at < kManual.size(); ++at) {
    std::vector<std::string> answers(kManual.begin(), kManual.begin() + static_cast<std::ptrdiff_t>(at));
    answers.emplace_back("float 0.5");
    const ProgramResult run = scripted(answers);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("\"float 0.5\" does not answer this dialog, which expects "));
  }
  const ProgramResult run = scripted({"integer 4"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(
      run.err,
      AllOf(HasSubstr("a whole number from 0 to 3"),
            HasSubstr(
                "Add a VOI as a reference region:\n0. Stop selecting\n1. driver\n2. other\n3. Add all\n")));
}

TEST_F(HostSession, TakesControlDAtATerminalAsOneCancelledDialog) {
  PseudoTerminal terminal(arguments({}), data.folder.path());
  const auto answer = [&](const std::string& prompt, const std::string& keys) {
    ASSERT_TRUE(terminal.shows(prompt)) << prompt;
    terminal.type(keys);
  };
  answer("Number or name, 0 to 3 [1]: ", "1\n");
  answer("Number or name, 0 to 3 [1]: ", "0\n");
  answer("Number or name, 1 to 2 [1]: ", "\n");
  answer("Text: ", "all\n");
  for (int repeat = 0; repeat < 3; ++repeat) {
    answer("File to open [run1.vtc]: ", app_test::kControlD);
    answer("Press Enter to go on: ", "\n");
  }
  answer("File to open [run1.vtc]: ", "run1.vtc\n");
  answer("Number, 1 to 1000000 [5]: ", app_test::kControlD);
  answer("Cancel it? yes or no [no]: ", "yes\n");
  EXPECT_TRUE(terminal.shows("// TAV> Canceled by user."));
  EXPECT_EQ(terminal.exitCode(), 1);
}

// --- what the plug-in refuses ---

TEST_F(HostSession, ShowsWhatIsMissing) {
  const std::string folder = data.folder.path();
  const std::string plugin = TAVMAP_PLUGIN;
  data.folder.write("vmr.txt", "message No VMR\n");
  data.folder.write("vtc.txt", "message No VTC\n");
  data.folder.write("voi.txt", "message No VOI file\n");
  EXPECT_EQ(tavmap({"host", plugin, "--script", "vmr.txt"}, folder).exitCode, 1);
  EXPECT_EQ(tavmap({"host", plugin, "--script", "vtc.txt", "--anatomy", "t1.nii"}, folder).exitCode, 1);
  EXPECT_EQ(
      tavmap({"host", plugin, "--script", "voi.txt", "--anatomy", "t1.nii", "--vtc", "run1.vtc"}, folder)
          .exitCode,
      1);
}

TEST_F(HostSession, LetsThePluginRefuseAnOldHost) {
  data.folder.write(
      "old.txt",
      "message Sorry, can not execute the TAV plugin - CorvaneZQ version 2.1.0 or higher required.\n");
  const ProgramResult run =
      tavmap({"host", TAVMAP_PLUGIN, "--host-version", "2.0.9", "--script", "old.txt"}, data.folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "tavmap: The plug-in refused to start: its initPlugin returned false.\n");
}

TEST_F(HostSession, GoesOnWithoutASettingsFile) {
  std::filesystem::remove(data.folder / "TAVPlugin.ini");
  const ProgramResult run = scripted({"cancel"});
  EXPECT_THAT(run.out,
              HasSubstr("// TAV> WARNING: Could not find or open " + (data.folder / "TAVPlugin.ini") + "\n"));
}

TEST_F(HostSession, LeavesNoProtocolWhenItsFileIsNone) {
  data.folder.write("bad.prt", "this is no protocol\n");
  const ProgramResult run =
      scripted({"integer 1", "integer 0", "integer 2", "text face", "open run1.vtc", "open bad.prt"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, AllOf(HasSubstr("ERROR: " + (data.folder / "bad.prt")),
                             HasSubstr("// TAV> ERROR: Could not get access to protocol definition\n")));
}

// --- files that cannot be written ---

TEST_F(HostSession, FailsWhenTheMapsCannotBeWritten) {
  std::filesystem::create_directory(data.folder / "maps_driver.tav");
  const ProgramResult run = scripted(kManual);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("ERROR: " + (data.folder / "maps_driver.tav")));
  EXPECT_EQ(run.err, "tavmap: The run reported errors; its log says which.\n");
}

TEST_F(HostSession, FailsWhenTheLogCannotBeWritten) {
  std::filesystem::create_directory(data.folder / "maps_driver.log");
  const ProgramResult run = scripted(kManual);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("WARNING: Could not write the log " + (data.folder / "maps_driver.log")));
  EXPECT_TRUE(std::filesystem::is_regular_file(data.folder / "maps_driver.tav"));
}

// --- the command line ---

TEST_F(HostSession, RefusesWrongUsage) {
  const std::string folder = data.folder.path();
  EXPECT_EQ(tavmap({"host"}, folder).exitCode, 2);
  EXPECT_EQ(tavmap({"host", TAVMAP_PLUGIN, "--seed", "-1"}, folder).exitCode, 2);
  const ProgramResult version = tavmap({"host", TAVMAP_PLUGIN, "--host-version", "two"}, folder);
  EXPECT_EQ(version.exitCode, 2);
  EXPECT_EQ(version.err, "tavmap: --host-version two: a version looks like 2.1.0\n");
  const ProgramResult script = tavmap({"host", TAVMAP_PLUGIN, "--script", "absent.txt"}, folder);
  EXPECT_EQ(script.exitCode, 2);
  EXPECT_EQ(script.err, "tavmap: Cannot read the script absent.txt: check the path and its permissions.\n");
}

TEST_F(HostSession, ExplainsItself) {
  const ProgramResult run = tavmap({"host", "--help"}, data.folder.path());
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("Examples:"), HasSubstr("--protocol"), HasSubstr("Exit codes: 0 done")));
}

}  // namespace
