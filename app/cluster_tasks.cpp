#include "app/cluster_tasks.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>

#include "bids/bids_names.h"

namespace app {
namespace {

using cluster::Command;

// The labels by which a command finds a request.
struct Labels {
  std::string participant, session, task;
  bool operator<(const Labels& other) const {
    return std::tie(participant, session, task) < std::tie(other.participant, other.session, other.task);
  }
};

Labels labelsOf(const study::Request& request) {
  const study::BidsName name = study::parseBidsName(request.title + "_bold.nii.gz");
  return {name.get("sub"), name.get("ses"), name.get("task")};
}

// A label that not all requests of the participant have cannot be asked for.
std::map<std::string, Labels> usableLabels(const std::vector<planning::Surveyed>& requests) {
  std::map<std::string, Labels> shared;
  for (const planning::Surveyed& one : requests) {
    const Labels labels = labelsOf(one.request);
    const auto [place, isNew] = shared.emplace(labels.participant, Labels{"", "yes", "yes"});
    if (labels.session.empty()) place->second.session = "";
    if (labels.task.empty()) place->second.task = "";
  }
  return shared;
}

Command withOptions(const TaskMaker& maker, const std::string& level, std::set<std::string> without) {
  without.insert(clusterOptionNames().begin(), clusterOptionNames().end());
  for (const char* name : {"no-report", "reports-only", "quiet", "json", "dataset-files"})
    without.insert(name);
  Command words = {maker.program, "bids", maker.arguments.bidsDir, maker.arguments.outDir, level};
  const Command given = givenOptions(maker.command, without);
  words.insert(words.end(), given.begin(), given.end());
  return words;
}

Command participantCommand(const TaskMaker& maker, const Labels& labels, const planning::Surveyed& first) {
  std::set<std::string> without = {"participant-label", "seed", "model"};
  if (!labels.session.empty()) without.insert("session-label");
  if (!labels.task.empty()) without.insert("task-label");
  Command words = withOptions(maker, "participant", without);
  words.push_back("--participant-label=" + labels.participant);
  if (!labels.session.empty()) words.push_back("--session-label=" + labels.session);
  if (!labels.task.empty()) words.push_back("--task-label=" + labels.task);
  words.push_back(fmt::format("--seed={}", first.plan->seed));
  words.emplace_back("--no-report");
  words.push_back("--dataset-files=" + (maker.parts() / first.request.title).string());
  return words;
}

}  // namespace

std::vector<cluster::Task> participantTasks(const TaskMaker& maker,
                                            const std::vector<planning::Surveyed>& requests) {
  const std::map<std::string, Labels> usable = usableLabels(requests);
  std::set<Labels> seen;
  std::vector<cluster::Task> tasks;
  for (const planning::Surveyed& one : requests) {
    if (!one.plan || one.missing.empty()) continue;
    Labels labels = labelsOf(one.request);
    if (usable.at(labels.participant).session.empty()) labels.session.clear();
    if (usable.at(labels.participant).task.empty()) labels.task.clear();
    if (seen.insert(labels).second)
      tasks.push_back({one.request.title, {participantCommand(maker, labels, one)}});
  }
  return tasks;
}

cluster::Task groupTask(const TaskMaker& maker) {
  Command words = withOptions(maker, "group", {"stop-on-first-crash"});
  if (maker.arguments.study.noReport) words.emplace_back("--no-report");
  return {"group", {words}};
}

cluster::Task reportsTask(const TaskMaker& maker) {
  Command words = withOptions(maker, "participant", {"force", "model", "stop-on-first-crash"});
  words.emplace_back("--reports-only");
  if (maker.arguments.study.noReport) words.emplace_back("--no-report");
  words.push_back("--dataset-files=" + maker.parts().string());
  return {"reports", {words}};
}

}  // namespace app
