#include "app/bids_options.h"

#include "app/memory_limit.h"
#include "prepare/image_sidecar.h"
#include "request/confound_terms.h"
#include "request/problem.h"

namespace app {
namespace {

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

}  // namespace

study::BidsRequests requestsOf(const BidsArguments& arguments) {
  study::BidsOptions options = arguments.options;
  options.bidsDir = arguments.bidsDir;
  options.outDir = arguments.outDir;
  options.workDir = arguments.workDir;
  options.atlas = arguments.atlas;
  options.atlasTable = arguments.atlasTable;
  options.anatomy = arguments.anatomy;
  options.derivatives.assign(arguments.derivatives.begin(), arguments.derivatives.end());
  readConfiguration(arguments, options);
  study::BidsRequests made = study::bidsRequests(options);
  refuseOtherTimes(arguments, made.requests);
  return made;
}

std::filesystem::path workFolderOf(const BidsArguments& arguments) {
  const std::filesystem::path out = arguments.outDir;
  return arguments.workDir.empty() ? out / "work" : std::filesystem::path(arguments.workDir);
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

void addRunningOptions(CLI::App& command, BidsArguments& arguments) {
  command.add_option("-w,--work-dir,--work_dir", arguments.workDir,
                     "Work folder for imported runs; default: OUT_DIR/work");
  command.add_flag("--stop-on-first-crash,--stop_on_first_crash", arguments.stopOnFirstCrash,
                   "Start nothing new after a failure");
  command
      .add_option(
          "--connectomes", arguments.connectomes,
          "Participant level: compute every region with every other (docs/connectome.md), \"also\" or, "
          "without maps, \"only\"")
      ->check(CLI::IsMember({"also", "only"}));
  command.add_flag("--reports-only,--reports_only", arguments.reportsOnly, "Rebuild reports only");
  command.add_option("--dataset-files", arguments.datasetFiles)->group("");  // for tasks of a scheduler
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

}  // namespace app
