// One question, asked of one cell: from participants' maps to files.
#ifndef TAVMAP_GROUP_GROUP_TEST_RUN_H
#define TAVMAP_GROUP_GROUP_TEST_RUN_H

#include <filesystem>
#include <functional>
#include <string>

#include "group/group_cells.h"
#include "group/group_model.h"
#include "group/group_test_record.h"
#include "group/participants.h"

namespace study {

struct GroupRunOptions {
  std::filesystem::path outDir;  // of the participants' records; results go into its folder "group"
  std::string version;           // of the program
  int threads = 1;               // nothing of it shows in results
  bool force = false;            // compute what is there again
  std::function<void(double)> progress = {};  // 0 to 1
};

struct GroupTestOutcome {
  GroupTestRecord record;
  std::string file;     // of the record, relative to outDir
  bool isKept = false;  // it was there, made from the same inputs and settings
};

// Reads the maps, tests them (inference/run_test.h) and writes images, tables and, last, the record. A result
// that is there and carries the same key is kept. Throws InputError, formats::FileError.
[[nodiscard]] GroupTestOutcome runGroupTest(const GroupQuestion& question, const GroupCell& cell,
                                            const GroupInference& inference, const Participants& participants,
                                            const GroupRunOptions& options);

}  // namespace study

#endif
