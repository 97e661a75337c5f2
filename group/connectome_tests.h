// Tests over participants at every edge of their connectomes.
#ifndef TAVMAP_GROUP_CONNECTOME_TESTS_H
#define TAVMAP_GROUP_CONNECTOME_TESTS_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "group/group_model.h"
#include "group/participants.h"

namespace study {

struct EdgeTestOutcome {
  std::string test, question;  // name, and in words
  std::string task, session, condition, measure;
  std::size_t participants = 0, edges = 0;
  std::size_t edgesPassing = 0, componentsPassing = 0;  // at a family-wise p of the level
  std::size_t shuffles = 0;
  std::vector<std::string> leftOut;  // in words
  std::string stem;                  // of its files in the folder of the group (connectome/edge_group.h)
};

// One question (question.edges is a measure's name) of every condition, task and session for which two
// participants or more have matrices below outDir. Throws InputError when there is none, for a model that
// cannot be tested and for matrices of other regions; formats::FileError.
[[nodiscard]] std::vector<EdgeTestOutcome> runEdgeTests(const std::filesystem::path& outDir,
                                                        const GroupQuestion& question,
                                                        const GroupInference& inference,
                                                        const Participants& participants, int threads);

}  // namespace study

#endif
