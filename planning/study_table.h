// What is known of a study before it runs, for a person at a terminal and for programs.
#ifndef TAVMAP_PLANNING_STUDY_TABLE_H
#define TAVMAP_PLANNING_STUDY_TABLE_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "planning/expenses.h"
#include "planning/survey.h"

namespace planning {

struct StudyTable {
  std::vector<Surveyed> requests;
  std::vector<std::string> withoutRequest;  // whom no request could be made for, and why
  std::vector<Expenses> expenses;           // of each of `requests`
  int jobs = 1;
  double measuredSeconds = 0;  // how long the calibration took
  std::vector<std::string> warnings;
};

// Counts of stored and left volumes, of each run as the plan has it.
struct VolumeCounts {
  int stored = 0, dropped = 0, censored = 0;
};
[[nodiscard]] VolumeCounts volumesOf(const study::StudyPlan& plan);

// Fills `warnings`: the cautions of plans and regions, each once, with whose they are when there are several
// requests; and what this machine lacks: memory for `jobs` workers, space where folders go.
void collectWarnings(StudyTable& table);

// The largest of the machine's limits that the study would break, in words; empty when there is none.
[[nodiscard]] std::string memoryWarning(double neededMegabytes, int jobs, double machineMegabytes);
[[nodiscard]] std::string diskWarning(const std::filesystem::path& folder, double neededMegabytes,
                                      double freeMegabytes);

void printTable(const StudyTable& table, std::ostream& out);
[[nodiscard]] nlohmann::ordered_json tableJson(const StudyTable& table, const std::string& version);

}  // namespace planning

#endif
