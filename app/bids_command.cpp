// tavmap bids: a BIDS App.
#include <fmt/core.h>

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/bids_options.h"
#include "app/cluster_options.h"
#include "app/cluster_run.h"
#include "app/commands.h"
#include "app/connectome_work.h"
#include "app/exit_codes.h"
#include "app/memory_limit.h"
#include "app/study_options.h"
#include "group/group.h"
#include "group/group_summary.h"
#include "group/group_table.h"
#include "report/reports.h"
#include "request/problem.h"
#include "results/output_folder.h"
#include "study/dataset_files.h"

namespace app {
namespace {

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

// After the maps, whose imports they share; and once more the index, which links to their pages.
int connectomesOf(const std::vector<study::Request>& requests, const BidsArguments& arguments) {
  if (arguments.connectomes.empty()) return kDone;
  const int code = makeConnectomes(requests, arguments.study);
  if (arguments.connectomes == "also" && !arguments.study.noReport) report::writeIndex(arguments.outDir);
  return code;
}

int participants(const BidsArguments& arguments) {
  study::StudyOptions run;
  run.stopOnFirstCrash = arguments.stopOnFirstCrash;
  run.datasetFolder = arguments.datasetFiles.empty() ? arguments.outDir : arguments.datasetFiles;
  study::BidsRequests made = requestsOf(arguments);
  run.withoutRequest = std::move(made.failures);
  int maps = kDone;
  if (arguments.connectomes != "only") maps = runRequests(made.requests, run, withinMemory(arguments));
  const int edges = connectomesOf(made.requests, arguments);
  return maps != kDone ? maps : edges;
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

// Tasks of a scheduler have left what goes with the data set as a whole.
void gather(const BidsArguments& arguments) {
  if (arguments.datasetFiles.empty()) return;
  const study::BidsRequests made = requestsOf(arguments);
  std::vector<std::string> titles;
  for (const study::Request& request : made.requests) titles.push_back(request.title);
  study::gatherDatasetFiles(arguments.outDir, arguments.datasetFiles, titles);
}

int reportsAlone(const BidsArguments& arguments) {
  gather(arguments);
  if (arguments.study.noReport) return kDone;
  for (const std::string& page : report::rebuildReports(arguments.outDir, arguments.study.jobs))
    if (!arguments.study.quiet) std::cout << page << "\n";
  return kDone;
}

// One level after the other, as long as none fails.
int bids(const BidsArguments& arguments) {
  if (arguments.reportsOnly) return reportsAlone(arguments);
  int code = kDone;
  for (const std::string& level : arguments.levels) {
    code = level == "group" ? group(arguments) : participants(arguments);
    if (code != kDone) break;
  }
  return code;
}

void requireLevels(const std::vector<std::string>& levels) {
  if (levels.size() == 2 && !(levels[0] == "participant" && levels[1] == "group"))
    throw UsageError("analysis levels: give participant, group, or participant and then group");
}

int bidsAnywhere(const CLI::App& command, const BidsArguments& arguments, const ClusterArguments& cluster) {
  requireLevels(arguments.levels);
  if (isForCluster(cluster) && !arguments.connectomes.empty())
    throw UsageError(
        "--connectomes cannot be given with --scheduler; give it without, once the maps are there");
  return isForCluster(cluster) ? onCluster(command, arguments, cluster) : bids(arguments);
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
    "  tavmap bids /data /out participant group --atlas atlas_dseg.nii.gz --scheduler slurm --partition "
    "long\n"
    "      one task per participant and session on a cluster, then the group level, then reports; the same\n"
    "      command again says how far they are, and submits what is missing (docs/cluster.md)\n"
    "Exit codes: 0 done, 1 a participant or a record failed, 2 wrong usage or input, 130 interrupted.";

}  // namespace

void addBidsCommand(CLI::App& program) {
  const auto arguments = std::make_shared<BidsArguments>();
  const auto cluster = std::make_shared<ClusterArguments>();
  CLI::App* command = program.add_subcommand("bids", "Compute maps from BIDS derivatives (BIDS App)");
  command->add_option("bids_dir", arguments->bidsDir, "BIDS data set; only read")->required();
  command->add_option("output_dir", arguments->outDir, "Where the derivatives go")->required();
  command->add_option("analysis_level", arguments->levels, "participant, group, or both in this order")
      ->required()
      ->expected(1, 2)
      ->check(CLI::IsMember({"participant", "group"}));
  addQueryOptions(*command, arguments->options.query);
  addInputOptions(*command, *arguments);
  addRunningOptions(*command, *arguments);
  command->add_flag("--leave-out-outdated,--leave_out_outdated", arguments->leaveOutOutdated,
                    "Group level: go on without records whose inputs are gone or were changed since");
  addGroupRunOptions(*command, arguments->tests);
  addStudyOptions(*command, arguments->study);
  addClusterOptions(*command, *cluster);
  command->set_version_flag("--version", std::string("tavmap ") + softwareVersion());
  command->footer(kFooter);
  command->callback([command, arguments, cluster] {
    leaveWith([&] { return bidsAnywhere(*command, *arguments, *cluster); });
  });
}

}  // namespace app
