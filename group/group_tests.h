// All tests that a model asks for, one after the other.
#ifndef TAVMAP_GROUP_GROUP_TESTS_H
#define TAVMAP_GROUP_GROUP_TESTS_H

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "group/connectome_tests.h"
#include "group/group.h"
#include "group/group_test_run.h"

namespace study {

struct GroupTestsResult {
  std::vector<GroupTestOutcome> tests;
  std::vector<EdgeTestOutcome> edgeTests;
  std::vector<std::string> failures;  // in words: which test, and why
};

// Asks every question of every cell of its own. started: told what comes next. A test that cannot be made is
// a failure and does not stop the others; when none can be made, and when a question has no cell at all,
// InputError. Throws formats::FileError when results cannot be written.
[[nodiscard]] GroupTestsResult runGroupTests(const GroupResult& group, const GroupModel& model,
                                             const Participants& participants, const GroupRunOptions& options,
                                             const std::function<void(const std::string&)>& started);

// The table of participants of the data set: bidsDir/participants.tsv where bidsDir is not empty; else that
// of the data set that the output folder names as its source. No table where there is none.
[[nodiscard]] Participants participantsOf(const std::filesystem::path& bidsDir,
                                          const std::filesystem::path& outDir);

// What was found, in lines for a terminal.
void printGroupTests(const GroupTestsResult& result, std::ostream& out);

}  // namespace study

#endif
