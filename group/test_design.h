// A question as a linear model over participants.
#ifndef TAVMAP_GROUP_TEST_DESIGN_H
#define TAVMAP_GROUP_TEST_DESIGN_H

#include <cstddef>
#include <string>
#include <vector>

#include "group/group_model.h"
#include "group/participants.h"
#include "inference/model.h"
#include "inference/test_options.h"

namespace study {

struct GroupDesign {
  inference::Model model;  // a row per participant that is kept
  inference::Exchange exchange = inference::Exchange::kSignFlips;
  std::vector<int> blocks;           // per row; empty: one block
  std::vector<std::size_t> rows;     // which of the participants are kept
  std::vector<std::string> levels;   // per row: its group; empty without groups
  std::vector<std::string> leftOut;  // in words
  std::string words;                 // "the mean differs from 0", "patient more than control, given age"
};

// participants: labels without "sub-". Covariates are numbers, centred, or words of which there are two,
// coded -1/2 and 1/2 in the order of the alphabet and centred. Without a value for a column that is used, a
// participant is left out. Means are exchanged by sign flips, everything else by permutations. Throws
// InputError for a group or column that is not there, for three words or more, and for fewer than two
// participants of a group that the contrast names.
[[nodiscard]] GroupDesign groupDesign(const GroupQuestion& question,
                                      const std::vector<std::string>& participants,
                                      const Participants& table);

}  // namespace study

#endif
