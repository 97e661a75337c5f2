#include "app/group_options.h"

#include <fmt/core.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/exit_codes.h"
#include "app/study_options.h"
#include "bids/bids_names.h"
#include "report/group_page.h"
#include "report/reports.h"
#include "results/output_folder.h"
#include "study/progress_bar.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

void addQuestionOptions(CLI::App& command, GroupTestArguments& arguments) {
  study::GroupQuestion& question = arguments.question;
  command.add_option("--name", question.name, "Name of the test, letters and digits; part of file names");
  command.add_option("--map", question.maps,
                     "Maps: Ref2Vox, Vox2Ref, Inst, dTAV, dTAVrev; default: all of them");
  command.add_option("--reference", question.references, "References; default: all");
  command.add_option("--condition", question.conditions, "Conditions; default: all, each for itself");
  command.add_option(
      "--edges", question.edges,
      "Test connectomes at every edge instead of maps: NetInfluence, Influence or Instantaneous");
  command.add_option(
      "--within", question.within,
      "What every participant brings: 'faces - houses' of conditions, 'ses-2 - ses-1' of sessions");
  command
      .add_option("--contrast", question.contrast,
                  "'mean', 'patient - control' of groups, or the name of a covariate")
      ->capture_default_str();
  command.add_option("--group-column", question.groupColumn, "Column of the participants' groups")
      ->capture_default_str();
  command.add_option("--covariates", question.covariates, "Columns of the table of participants");
  command.add_option("--blocks", question.blocks,
                     "Column; only participants who share its value are exchanged");
  command.add_option("--leave-out", question.leftOut, "Participants who take no part");
}

void addInferenceOptions(CLI::App& command, study::GroupInference& inference, bool& noTfce) {
  command.add_option("--shuffles", inference.shuffles, "Sign flips or permutations")
      ->check(CLI::Range(20, 1000000))
      ->capture_default_str();
  command.add_option("--seed", inference.seed, "Seed of the shuffles")->capture_default_str();
  command.add_option("--variance-fwhm", inference.varianceFwhmMm, "Smooth the variance of t, millimetres")
      ->check(CLI::Range(0.0, 50.0));
  command.add_option("--cluster-z", inference.clusterFormingZ, "From which clusters form")
      ->check(CLI::Range(0.5, 10.0))
      ->capture_default_str();
  command
      .add_option("--smallest-share", inference.smallestShare,
                  "Of the participants, whom a voxel needs to be tested")
      ->check(CLI::Range(0.1, 1.0))
      ->capture_default_str();
  command.add_flag("--no-tfce", noTfce, "Without threshold-free cluster enhancement");
}

study::GroupModel modelOf(const GroupTestArguments& arguments) {
  if (!arguments.modelFile.empty()) return study::readGroupModel(arguments.modelFile);
  study::GroupModel model{arguments.inference, {arguments.question}};
  study::GroupQuestion& question = model.questions[0];
  model.inference.enhance = !arguments.noTfce;
  if (question.name.empty()) question.name = study::bidsLabel(question.contrast);
  if (question.name != study::bidsLabel(question.name))
    throw UsageError(fmt::format("--name '{}' must be of letters and digits", question.name));
  if (!question.within.empty() && study::sidesOf(question.within).empty())
    throw UsageError("--within must be a difference, such as 'faces - houses'");
  for (std::string& label : question.leftOut) label = study::withoutPrefix(label, "sub");
  return model;
}

// One line that is written anew while a test runs; nothing when nobody looks.
class TestProgress {
 public:
  explicit TestProgress(bool isQuiet)
      : isShown_(!isQuiet && ::isatty(STDERR_FILENO) == 1), isQuiet_(isQuiet) {}
  ~TestProgress() { clear(); }
  TestProgress(const TestProgress&) = delete;
  TestProgress& operator=(const TestProgress&) = delete;

  void begin(const std::string& test) {
    clear();
    test_ = test;
    start_ = std::chrono::steady_clock::now();
    if (!isShown_ && !isQuiet_) std::cerr << test << "\n";
  }
  void at(double fraction) {
    if (!isShown_) return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    std::cerr << "\r\x1b[K" << test_ << " " << study::progressLine(fraction, elapsed.count()) << std::flush;
  }

 private:
  void clear() const {
    if (isShown_ && !test_.empty()) std::cerr << "\r\x1b[K" << std::flush;
  }
  bool isShown_, isQuiet_;
  std::string test_;
  std::chrono::steady_clock::time_point start_;
};

void tellPages(const std::vector<std::string>& pages, const GroupTestArguments& arguments) {
  if (arguments.quiet || arguments.json) return;
  for (const std::string& page : pages) std::cout << "Report: " << page << "\n";
}

// An index over participants that is there leads to the tests as well.
std::vector<std::string> pagesOf(const fs::path& outDir) {
  std::vector<std::string> pages = report::writeGroupReports(outDir);
  if (fs::exists(outDir / report::kIndexFile)) pages.push_back(report::writeIndex(outDir));
  return pages;
}

Json recordsJson(const study::GroupTestsResult& result) {
  Json tests = Json::array();
  for (const study::GroupTestOutcome& test : result.tests) {
    Json json = Json::parse(study::groupRecordText(test.record));
    json["Record"] = test.file;
    json["Kept"] = test.isKept;
    tests.push_back(std::move(json));
  }
  return {{"Tests", std::move(tests)}, {"Failures", result.failures}};
}

}  // namespace

void addGroupRunOptions(CLI::App& command, GroupTestArguments& arguments) {
  command.add_option("--model", arguments.modelFile,
                     "TOML file with [inference] and [[test]]; see 'tavmap group --example'");
}

void addGroupTestOptions(CLI::App& command, GroupTestArguments& arguments) {
  addGroupRunOptions(command, arguments);
  addQuestionOptions(command, arguments);
  addInferenceOptions(command, arguments.inference, arguments.noTfce);
  command.add_option("-j,--jobs,--nthreads", arguments.jobs, "Threads")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command.add_flag("--force", arguments.force, "Compute again what is there");
  command.add_flag("--no-report", arguments.noReport, "Write no pages");
  command.add_flag("-q,--quiet", arguments.quiet, "Say nothing but failures");
  command.add_flag("--json", arguments.json, "Print the records as JSON");
}

int runGroupTests(const study::GroupResult& group, const study::Participants& participants,
                  const fs::path& outDir, const GroupTestArguments& arguments) {
  const study::GroupModel model = modelOf(arguments);
  TestProgress progress(arguments.quiet || arguments.json);
  study::GroupRunOptions options{outDir, softwareVersion(), arguments.jobs, arguments.force,
                                 [&](double fraction) { progress.at(fraction); }};
  const study::GroupTestsResult result = study::runGroupTests(
      group, model, participants, options, [&](const std::string& test) { progress.begin(test); });
  progress.begin("");
  for (const std::string& failure : result.failures) std::cerr << "FAILED: " << failure << "\n";
  study::explainOutputFolder(outDir);
  if (!arguments.noReport) tellPages(pagesOf(outDir), arguments);
  if (arguments.json) {
    std::cout << recordsJson(result).dump(2) << "\n";
  } else if (!arguments.quiet) {
    study::printGroupTests(result, std::cout);
  }
  return result.failures.empty() ? kDone : kFailed;
}

}  // namespace app
