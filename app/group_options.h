// Options of tests over participants, which two verbs have.
#ifndef TAVMAP_APP_GROUP_OPTIONS_H
#define TAVMAP_APP_GROUP_OPTIONS_H

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

#include "group/group_tests.h"

namespace app {

struct GroupTestArguments {
  std::string modelFile;
  study::GroupQuestion question;  // of the options
  study::GroupInference inference;
  bool noTfce = false, force = false, quiet = false, json = false, noReport = false;
  int jobs = 1;
};

void addGroupTestOptions(CLI::App& command, GroupTestArguments& arguments);
// The options that say how a model is computed, without those that ask a question.
void addGroupRunOptions(CLI::App& command, GroupTestArguments& arguments);

// Runs the tests of the model file, or the one of the options, writes their reports and prints what was
// found: to standard output, with --json as JSON; progress goes to standard error. Returns the exit code.
[[nodiscard]] int runGroupTests(const study::GroupResult& group, const study::Participants& participants,
                                const std::filesystem::path& outDir, const GroupTestArguments& arguments);

}  // namespace app

#endif
