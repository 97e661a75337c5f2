// tavmap bids: a BIDS App.
#include <fmt/core.h>

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/group_options.h"
#include "app/memory_limit.h"
#include "app/study_options.h"
#include "bids/bids_study.h"
#include "group/group.h"
#include "group/group_summary.h"
#include "group/group_table.h"
#include "prepare/image_sidecar.h"
#include "report/reports.h"
#include "request/confound_terms.h"
#include "request/problem.h"
#include "results/output_folder.h"

namespace app {
namespace {

struct BidsArguments {
  study::BidsOptions options;
  std::string level, bidsDir, outDir, workDir, filterFile, configFile, atlas, atlasTable, anatomy, drop;
  std::vector<std::string> derivatives, confounds;
  std::string memory;
  double fdThreshold = -1, trSeconds = 0;
  bool stopOnFirstCrash = false, reportsOnly = false, leaveOutOutdated = false;
  bool ignored = false;  // flags that schedulers pass and nothing here needs
  int threadsPerWorker = 1;
  StudyArguments study;
  GroupTestArguments tests;
};

void readConfiguration(const BidsArguments& arguments, study::BidsOptions& options) {
  if (!arguments.configFile.empty()) options.configuration = study::readRequestTemplate(arguments.configFile);
  if (!arguments.filterFile.empty()) options.query.entities = study::readBidsFilter(arguments.filterFile);
  study::RunRequest& preparation = options.configuration.preparation;
  for (const std::string& term : arguments.confounds) {
    const std::string problem = study::confoundTermProblem(term);
    if (!problem.empty()) throw study::InputError("--confounds " + problem);
  }
  if (!arguments.confounds.empty()) preparation.confoundTerms = arguments.confounds;
  if (arguments.fdThreshold >= 0) preparation.censoring.fdThresholdMm = arguments.fdThreshold;
  if (arguments.trSeconds > 0) preparation.trSeconds = arguments.trSeconds;
  if (arguments.drop == "auto")
    preparation.dropVolumes = study::kDropFromConfounds;
  else if (!arguments.drop.empty())
    preparation.dropVolumes = std::stoi(arguments.drop);
}

// --tr stands in for what nobody wrote down; where somebody did, one of the two is wrong.
void refuseOtherTimes(const BidsArguments& arguments, const std::vector<study::Request>& requests) {
  if (arguments.trSeconds <= 0) return;
  for (const study::Request& request : requests) {
    for (const study::RunRequest& run : request.runs)
      study::requireTimeOf(study::readImageSidecar(run.bold), arguments.trSeconds, "--tr");
  }
}

StudyArguments withinMemory(const BidsArguments& arguments) {
  StudyArguments study = arguments.study;
  if (arguments.memory.empty()) return study;
  study.jobs = workersWithin(*megabytesOf(arguments.memory), study.jobs);
  if (study.jobs < arguments.study.jobs && !study.quiet) {
    std::cerr << fmt::format("tavmap: --mem-mb {} holds {} of {} workers, each of which may take {} MB\n",
                             arguments.memory, study.jobs, arguments.study.jobs, kMegabytesPerWorker);
  }
  return study;
}

int participants(const BidsArguments& arguments) {
  study::BidsOptions options = arguments.options;
  options.bidsDir = arguments.bidsDir;
  options.outDir = arguments.outDir;
  options.workDir = arguments.workDir;
  options.atlas = arguments.atlas;
  options.atlasTable = arguments.atlasTable;
  options.anatomy = arguments.anatomy;
  options.derivatives.assign(arguments.derivatives.begin(), arguments.derivatives.end());
  readConfiguration(arguments, options);
  study::StudyOptions run;
  run.stopOnFirstCrash = arguments.stopOnFirstCrash;
  run.datasetFolder = arguments.outDir;
  study::BidsRequests made = study::bidsRequests(options);
  refuseOtherTimes(arguments, made.requests);
  run.withoutRequest = std::move(made.failures);
  return runRequests(made.requests, run, withinMemory(arguments));
}

int testGroup(const study::GroupResult& result, const BidsArguments& arguments) {
  GroupTestArguments tests = arguments.tests;
  tests.jobs = arguments.study.jobs;
  tests.force = arguments.study.force;
  tests.quiet = arguments.study.quiet || arguments.study.json;
  tests.noReport = arguments.study.noReport;
  return runGroupTests(result, study::participantsOf(arguments.bidsDir, arguments.outDir), arguments.outDir,
                       tests);
}

int group(const BidsArguments& arguments) {
  study::requireOutputElsewhere(arguments.bidsDir, arguments.outDir);
  const auto outdated = arguments.leaveOutOutdated ? study::Outdated::kLeftOut : study::Outdated::kRefused;
  const study::GroupResult result =
      study::readGroup(arguments.outDir, {arguments.bidsDir, arguments.options.query, outdated});
  for (const std::string& failure : result.failures) std::cerr << "tavmap: " << failure << "\n";
  if (result.records.empty()) {
    throw study::RunError(fmt::format("no record could be used; {} is not written", study::kGroupTable));
  }
  const std::size_t rows = study::writeGroupTable(result, arguments.outDir);
  study::explainOutputFolder(arguments.outDir);
  if (arguments.study.json) {
    std::cout << study::groupJson(result, softwareVersion()).dump(2) << "\n";
  } else if (!arguments.study.quiet) {
    study::printGroup(result, std::cout);
    std::cout << "Wrote " << study::kGroupTable << ", " << rows << " rows\n";
  }
  const int tested = arguments.tests.modelFile.empty() ? kDone : testGroup(result, arguments);
  return result.failures.empty() ? tested : kFailed;
}

int reportsAlone(const BidsArguments& arguments) {
  for (const std::string& page : report::rebuildReports(arguments.outDir, arguments.study.jobs))
    if (!arguments.study.quiet) std::cout << page << "\n";
  return kDone;
}

int bids(const BidsArguments& arguments) {
  if (arguments.reportsOnly) return reportsAlone(arguments);
  return arguments.level == "group" ? group(arguments) : participants(arguments);
}

// Both spellings are in use; schedulers pass either.
void addQueryOptions(CLI::App& command, study::BidsQuery& query) {
  command.add_option("--participant-label,--participant_label", query.participants,
                     "Participants, with or without 'sub-'");
  command.add_option("--session-label,--session_label,--session-id,--session_id", query.sessions, "Sessions");
  command.add_option("--task-label,--task_label,--task-id,--task_id,-t", query.tasks, "Tasks");
  command.add_option("--run-label,--run_label,--run-id,--run_id", query.runs, "Runs; 1 and 01 are the same");
  command.add_option("--space", query.space,
                     "Space of the preprocessed runs, such as MNI152NLin2009cAsym or native");
}

void addInputOptions(CLI::App& command, BidsArguments& arguments) {
  command.add_option("-d,--derivatives,--datasets", arguments.derivatives,
                     "Folders of preprocessed data; default: searched below BIDS_DIR");
  command.add_option(
      "--bids-filter-file,--bids_filter_file", arguments.filterFile,
      "JSON file of further entities: {\"bold\": {\"echo\": 1, \"res\": null}}; null: names without it");
  command.add_option("--config-file,--config_file", arguments.configFile,
                     "TOML file with [settings], [preparation], [[reference]], [[condition]]");
  command.add_option("--atlas", arguments.atlas, "Label image whose regions are the references");
  command.add_option(
      "--atlas-table", arguments.atlasTable,
      "Names of its labels (.tsv or a table of FreeSurfer, MRtrix, FSL or Schaefer); default: the "
      ".tsv beside it");
  command.add_option("--anatomy", arguments.anatomy,
                     "Image that pictures draw maps on, in the space of the runs, or 'none'; default: the "
                     "preprocessed T1w of that space");
  command.add_option("--labels", arguments.options.labels, "Labels to take, names or indices; default: all");
  command.add_option("--trial-types,--trial_types", arguments.options.trialTypes,
                     "Trial types, one condition each; default: whole runs");
  command
      .add_option("--delay", arguments.options.delaySeconds,
                  "Seconds added to onsets for the haemodynamic delay")
      ->check(CLI::Range(-1000.0, 1000.0));
  command.add_option("--confounds", arguments.confounds,
                     "What to regress out: presets (24motion, acompcor5, ...) or columns");
  command
      .add_option("--fd-threshold,--fd_threshold", arguments.fdThreshold,
                  "Censor volumes that moved more, millimetres")
      ->check(CLI::Range(0.0, 100.0));
  command
      .add_option("--tr", arguments.trSeconds,
                  "Repetition time in seconds, where the sidecars give none; refused where they give another")
      ->check(CLI::Range(0.1, 20.0));
  command.add_option("--drop-volumes", arguments.drop, "Leading volumes to drop, or 'auto'")
      ->check([](const std::string& text) {
        const bool number =
            !text.empty() && text.size() < 5 && text.find_first_not_of("0123456789") == std::string::npos;
        return number || text == "auto" ? std::string() : std::string("must be a whole number or 'auto'");
      });
}

void addSchedulerOptions(CLI::App& command, BidsArguments& arguments) {
  command.add_option("-w,--work-dir,--work_dir", arguments.workDir,
                     "Work folder for imported runs; default: OUT_DIR/work");
  command.add_flag("--stop-on-first-crash,--stop_on_first_crash", arguments.stopOnFirstCrash,
                   "Start nothing new after a failure");
  command.add_flag("--reports-only,--reports_only", arguments.reportsOnly, "Rebuild reports only");
  command.add_flag("--notrack", arguments.ignored, "Accepted for schedulers; nothing is ever tracked");
  command.add_flag("--skip-bids-validation,--skip_bids_validation", arguments.ignored,
                   "Accepted; the data set is not validated here");
  command
      .add_option(
          "--mem-mb,--mem_mb,--mem", arguments.memory,
          "Megabytes (or 8G) that all workers may take together: there are no more of them than fit, at 300 "
          "MB each")
      ->check([](const std::string& text) {
        return megabytesOf(text) ? std::string() : std::string("must be megabytes, such as 8000, or 8G");
      });
  command
      .add_option("--omp-nthreads,--omp_nthreads", arguments.threadsPerWorker,
                  "Threads of a worker; accepted, all workers together have at most --nthreads")
      ->check(CLI::Range(1, 1024));
}

constexpr const char* kFooter =
    "Several runs of a participant, session and task are pooled into one model as intervals, never "
    "stitched.\n"
    "Statistic maps are named SOURCE_seed-REFERENCE_contrast-CONDITIONMAP_stat-effect_statmap.nii.gz.\n\n"
    "The group level gathers what the participant level left in OUT into group_tavmap.tsv: thresholds, "
    "numbers of\n"
    "voxels that pass, peaks; one row per record, condition, map and q. With --model it tests over "
    "participants, as "
    "'tavmap\n"
    "group' does. Options that apply to it: --model, --participant-label, --session-label, --task-label, "
    "--space,\n"
    "--leave-out-outdated, --jobs, --force, --quiet, --json.\n\n"
    "Examples:\n"
    "  tavmap bids /data /out participant --derivatives /data/derivatives/fmriprep \\\n"
    "      --participant-label 01 02 --task-id rest --atlas atlas_dseg.nii.gz --labels LH-V1\n"
    "  tavmap bids /data /out participant --config-file study.toml --space MNI152NLin2009cAsym --jobs 8\n"
    "  tavmap bids /data /out group\n"
    "Exit codes: 0 done, 1 a participant or a record failed, 2 wrong usage or input, 130 interrupted.";

}  // namespace

void addBidsCommand(CLI::App& program) {
  const auto arguments = std::make_shared<BidsArguments>();
  CLI::App* command = program.add_subcommand("bids", "Compute maps from BIDS derivatives (BIDS App)");
  command->add_option("bids_dir", arguments->bidsDir, "BIDS data set; only read")->required();
  command->add_option("output_dir", arguments->outDir, "Where the derivatives go")->required();
  command->add_option("analysis_level", arguments->level, "participant or group")
      ->required()
      ->check(CLI::IsMember({"participant", "group"}));
  addQueryOptions(*command, arguments->options.query);
  addInputOptions(*command, *arguments);
  addSchedulerOptions(*command, *arguments);
  command->add_flag("--leave-out-outdated,--leave_out_outdated", arguments->leaveOutOutdated,
                    "Group level: go on without records whose inputs are gone or were changed since");
  addGroupRunOptions(*command, arguments->tests);
  addStudyOptions(*command, arguments->study);
  command->set_version_flag("--version", std::string("tavmap ") + softwareVersion());
  command->footer(kFooter);
  command->callback([arguments] { leaveWith([&] { return bids(*arguments); }); });
}

}  // namespace app
