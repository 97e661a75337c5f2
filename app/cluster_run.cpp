#include "app/cluster_run.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "app/cluster_tasks.h"
#include "app/exit_codes.h"
#include "cluster/job_files.h"
#include "cluster/outcome.h"
#include "cluster/submission.h"
#include "formats/atomic_file.h"
#include "formats/claimed_folder.h"
#include "planning/expenses.h"
#include "request/problem.h"
#include "study/dataset_files.h"
#include "study/earlier_results.h"
#include "study/kept_request.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kParticipants = "participants";
constexpr const char* kGroup = "group";
constexpr const char* kReports = "reports";

std::string jobsOf(const cluster::Submission& submission) {
  std::string jobs;
  for (const cluster::SubmittedStage& stage : submission.stages)
    jobs += (jobs.empty() ? "" : ",") + stage.job;
  return jobs;
}

struct Earlier {
  std::optional<cluster::Submission> submission;
  cluster::Outcome outcome;

  // Whether all tasks of a stage were done.
  [[nodiscard]] bool hasDone(const std::string& stage) const {
    bool any = false;
    for (const cluster::TaskOutcome& task : outcome.tasks) {
      if (task.stage != stage) continue;
      if (task.state != cluster::TaskState::kDone) return false;
      any = true;
    }
    return any;
  }
  [[nodiscard]] bool hasFailures() const { return outcome.count(cluster::TaskState::kFailed) > 0; }
};

Earlier earlierIn(const fs::path& parent) {
  Earlier earlier{cluster::lastSubmission(parent), {}};
  if (earlier.submission) earlier.outcome = cluster::outcomeOf(*earlier.submission);
  return earlier;
}

void tellEarlier(const Earlier& earlier) {
  std::cout << "Jobs " << jobsOf(*earlier.submission) << ", submitted from "
            << earlier.submission->folder.string() << "\n";
  cluster::printOutcome(earlier.outcome, std::cout);
}

// Whether nothing may be submitted now: the tasks of before would meet those of now.
bool isInTheWay(const Earlier& earlier) {
  if (!earlier.submission || !earlier.outcome.isUnderWay()) return false;
  const std::string jobs = jobsOf(*earlier.submission);
  if (!earlier.outcome.caution.empty()) {
    throw study::RunError(fmt::format(
        "{}; nothing is submitted, since jobs {} may still work. Repeat the command where squeue works",
        earlier.outcome.caution, jobs));
  }
  std::cout << "Nothing is submitted while they are under way. Look at them with squeue --jobs=" << jobs
            << ", end them with scancel " << jobs << ", and repeat this command when they have ended\n";
  return true;
}

// The files of the data set will say what became of requests that no task computes.
void keepProblems(const std::vector<std::string>& problems, const fs::path& parts) {
  if (problems.empty()) return;
  study::StudyOutcome outcome;
  outcome.failures = problems;
  study::keepRequestFailures(parts / "planning", {}, outcome);
}

class Submitter {
 public:
  Submitter(const CLI::App& command, const BidsArguments& arguments, const ClusterArguments& cluster,
            const fs::path& folder)
      : arguments_(arguments),
        cluster_(cluster),
        maker_{command, arguments, fs::read_symlink(kThisProgram).string(), folder} {}

  void surveyRequests();
  // Stages with something to do.
  [[nodiscard]] cluster::JobChain chain(const Earlier& earlier) const;
  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

 private:
  [[nodiscard]] bool wants(const char* level) const {
    return std::find(arguments_.levels.begin(), arguments_.levels.end(), level) != arguments_.levels.end();
  }
  [[nodiscard]] cluster::Stage participantStage() const;
  [[nodiscard]] cluster::Stage groupStage(bool afterParticipants) const;
  [[nodiscard]] cluster::Stage reportsStage(const cluster::JobChain& chain) const;
  [[nodiscard]] bool groupMayStart() const;
  [[nodiscard]] bool hasDoneGroup(const Earlier& earlier) const;
  [[nodiscard]] cluster::Needs needsOf(const planning::TaskNeeds& needs) const {
    return {needs.minutes, needs.megabytes, arguments_.study.jobs};
  }

  const BidsArguments& arguments_;
  const ClusterArguments& cluster_;
  TaskMaker maker_;
  std::vector<planning::Surveyed> requests_;
  std::vector<planning::Expenses> expenses_;
  std::vector<std::string> problems_;  // requests that cannot be computed
};

void Submitter::surveyRequests() {
  if (!wants("participant")) return;
  study::BidsRequests made = requestsOf(arguments_);
  problems_ = std::move(made.failures);
  requests_ = planning::survey(made.requests, {.seed = arguments_.study.seed,
                                               .version = softwareVersion(),
                                               .drawsSeeds = true,
                                               .force = arguments_.study.force});
  std::vector<study::StudyPlan> plans;
  for (const planning::Surveyed& one : requests_) {
    if (one.plan)
      plans.push_back(*one.plan);
    else
      problems_.push_back(one.problem);
  }
  if (!arguments_.study.force) study::refuseOtherRequests(plans);
  expenses_ = planning::expensesOf(requests_, maker_.folder.parent_path());
  for (const std::string& problem : problems_) std::cerr << "tavmap: " << problem << "\n";
}

cluster::Stage Submitter::participantStage() const {
  cluster::Stage stage{kParticipants, participantTasks(maker_, requests_), {}};
  stage.tasks = cluster::bundled(stage.tasks, static_cast<std::size_t>(cluster_.together));
  if (stage.tasks.empty()) return stage;
  const planning::Expenses largest = planning::largestOf(expenses_);
  stage.needs =
      needsOf(planning::needsOfTask(largest, arguments_.study.jobs, stage.tasks[0].commands.size()));
  return stage;
}

bool Submitter::groupMayStart() const {
  if (!wants("group")) return false;
  if (problems_.empty() || cluster_.despiteFailures) return true;
  std::cout << "The group level is not submitted, since " << problems_.size()
            << " of the participants and sessions cannot be computed; give --despite-failures to go on "
               "without them, "
               "or leave them out with --participant-label\n";
  return false;
}

// The same command, over the same model file.
bool Submitter::hasDoneGroup(const Earlier& earlier) const {
  if (!earlier.hasDone(kGroup)) return false;
  const fs::path folder = earlier.submission->folder, model = arguments_.tests.modelFile;
  const cluster::Stage now{kGroup, {groupTask(maker_)}, {}};
  if (formats::readTextFile((folder / "group.tasks").string()) != cluster::taskList(now)) return false;
  return model.empty() || fs::last_write_time(model) < fs::last_write_time(folder / cluster::kSubmissionFile);
}

cluster::Stage Submitter::groupStage(bool afterParticipants) const {
  cluster::Stage stage{kGroup, {groupTask(maker_)}, needsOf(planning::needsOfGroup(requests_.size()))};
  const auto condition =
      cluster_.despiteFailures ? cluster::Condition::kAllEnded : cluster::Condition::kAllSucceeded;
  if (afterParticipants) stage.after = {{kParticipants, condition}};
  return stage;
}

// Pages of what succeeded, whatever failed.
cluster::Stage Submitter::reportsStage(const cluster::JobChain& chain) const {
  cluster::Stage stage{kReports,
                       {reportsTask(maker_)},
                       needsOf(planning::needsOfReports(planning::largestOf(expenses_), requests_.size()))};
  for (const cluster::Stage& before : chain.stages)
    stage.after.push_back({before.name, cluster::Condition::kAllEnded});
  return stage;
}

cluster::JobChain Submitter::chain(const Earlier& earlier) const {
  cluster::JobChain chain{maker_.folder.string(), fs::current_path().string(), {}};
  cluster::Stage participants = participantStage();
  const bool computes = !participants.tasks.empty();
  if (computes) chain.stages.push_back(std::move(participants));
  const bool isGroupNew = computes || arguments_.study.force || !hasDoneGroup(earlier);
  if (isGroupNew && groupMayStart()) chain.stages.push_back(groupStage(computes));
  if (!chain.stages.empty() || !earlier.hasDone(kReports)) chain.stages.push_back(reportsStage(chain));
  return chain;
}

void tellSubmitted(const cluster::Submission& submission) {
  for (const cluster::SubmittedStage& stage : submission.stages)
    std::cout << fmt::format("{}: {} task{} as job {}\n", stage.name, stage.tasks.size(),
                             stage.tasks.size() == 1 ? "" : "s", stage.job);
  std::cout << "Scripts and logs: " << submission.folder.string()
            << "\nLook at them with squeue --jobs=" << jobsOf(submission)
            << "; repeat this command, or give --collect, to see what became of them\n";
}

void printScripts(const cluster::JobChain& chain, const cluster::SlurmOptions& options) {
  for (const cluster::JobFile& file : cluster::jobFiles(chain, options))
    std::cout << "== " << chain.folder << "/" << file.name << "\n" << file.text << "\n";
  std::cout
      << "Nothing was submitted. The scripts are plain bash: submit.sh hands them to Slurm; for another "
         "scheduler let each of its tasks run bash STAGE.sh NUMBER\n";
}

int submitMissing(const CLI::App& command, const BidsArguments& arguments, const ClusterArguments& cluster,
                  const Earlier& earlier, const fs::path& parent) {
  const fs::path folder = cluster.dryRun ? parent / "dry-run" : cluster::nextFolder(parent);
  Submitter submitter(command, arguments, cluster, folder);
  submitter.surveyRequests();
  const cluster::JobChain chain = submitter.chain(earlier);
  const int code = submitter.problems().empty() ? kDone : kFailed;
  if (chain.stages.empty()) {
    std::cout << "Nothing is missing\n";
    return code;
  }
  if (cluster.dryRun) fs::remove_all(folder);
  cluster::writeJobFiles(chain, cluster.slurm);
  keepProblems(submitter.problems(), folder / "parts");
  if (cluster.dryRun)
    printScripts(chain, cluster.slurm);
  else
    tellSubmitted(cluster::submit(chain, cluster.slurm));
  return code;
}

}  // namespace

bool isForCluster(const ClusterArguments& cluster) {
  return !cluster.scheduler.empty();
}

int onCluster(const CLI::App& command, const BidsArguments& arguments, const ClusterArguments& cluster) {
  if (arguments.study.json)
    throw UsageError("--json cannot be given with --scheduler; leave one of them out");
  const fs::path parent = fs::absolute(workFolderOf(arguments)).lexically_normal() / "cluster";
  if (cluster.dryRun) return submitMissing(command, arguments, cluster, {}, parent);
  fs::create_directories(parent);
  const formats::ClaimedFolder alone(parent, "submission");  // two at a time would submit twice
  const Earlier earlier = earlierIn(parent);
  if (earlier.submission) tellEarlier(earlier);
  if (cluster.collect && !earlier.submission)
    throw study::InputError(
        fmt::format("nothing was submitted from {}; leave --collect out", parent.string()));
  if (cluster.collect || isInTheWay(earlier)) return earlier.hasFailures() ? kFailed : kDone;
  return submitMissing(command, arguments, cluster, earlier, parent);
}

}  // namespace app
