// Options that the verbs running studies share, and what they do with the outcome.
#ifndef TAVMAP_APP_STUDY_OPTIONS_H
#define TAVMAP_APP_STUDY_OPTIONS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "study/study_run.h"

namespace app {

struct StudyArguments {
  int jobs = 1;
  std::optional<std::uint32_t> seed;
  int reportTo = -1;  // descriptor of a pipe, for whoever started the program; -1: none
  bool force = false, quiet = false, json = false, noReport = false;
};

void addStudyOptions(CLI::App& command, StudyArguments& arguments);

// Runs the requests, writes their reports and prints the summary: to standard output, with --json as JSON;
// progress goes to standard error. Returns the exit code. InputError becomes exit code 2, an interrupt 130.
[[nodiscard]] int runRequests(const std::vector<study::Request>& requests, study::StudyOptions options,
                              const StudyArguments& arguments);

// Turns the exceptions of study/problem.h into those of the program, and a code other than 0 into
// the program's exit code.
void leaveWith(const std::function<int()>& action);

const char* softwareVersion();
// The file that runs, also when another version has taken its name since.
inline constexpr const char* kThisProgram = "/proc/self/exe";

}  // namespace app

#endif
