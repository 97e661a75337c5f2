// What is asked of a group: tests over participants, as plain values, and the TOML file that they are read
// from.
#ifndef TAVMAP_GROUP_GROUP_MODEL_H
#define TAVMAP_GROUP_GROUP_MODEL_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "inference/level.h"
#include "tav/tav_defs.h"

namespace study {

// One question. It is asked of every combination of task, session, reference, condition and map that the
// lists allow.
struct GroupQuestion {
  std::string name;                                       // part of file names: letters and digits
  std::vector<std::string> maps, references, conditions;  // empty: all
  // A measure of connectomes ("NetInfluence", "Influence", "Instantaneous") that is tested at every edge,
  // instead of maps; maps and references do not apply then. Empty: maps.
  std::string edges;
  // What each participant brings: a map, or the difference of two: "faces - houses" of conditions, "ses-2 -
  // ses-1" of sessions.
  std::string within;
  // What is asked of the participants: "mean", "patient - control" (values of groupColumn), or the name of a
  // covariate.
  std::string contrast = "mean";
  std::string groupColumn = "group";    // of participants.tsv
  std::vector<std::string> covariates;  // columns; numbers, or words of which there are two
  std::string blocks;                   // column; only participants with the same value are exchanged
  std::vector<std::string> leftOut;     // participants
};

// How the questions are answered.
struct GroupInference {
  int shuffles = 5000;
  std::uint32_t seed = 1;
  double varianceFwhmMm = 0;  // 0: the plain t
  bool enhance = true;        // threshold-free cluster enhancement
  int connectivity = 26;
  double clusterFormingZ = 3.1;
  double smallestShare = 1;  // of the participants, whom a voxel needs to be tested
  double level = 0.05;       // of the family-wise error and of the false discovery rate
  [[nodiscard]] bool admits(float p) const { return inference::isWithin(p, level); }
};

struct GroupModel {
  GroupInference inference;
  std::vector<GroupQuestion> questions;
};

// Throws InputError with file, line and the nearest known name.
[[nodiscard]] GroupModel readGroupModel(const std::filesystem::path& file);
[[nodiscard]] GroupModel parseGroupModel(std::string_view text, const std::string& name);

// "A - B", blanks around the minus, as its two sides; both empty for a text without one. A name may hold
// minus signs of its own.
struct Sides {
  std::string first, second;
  [[nodiscard]] bool empty() const { return first.empty(); }
};
[[nodiscard]] Sides sidesOf(const std::string& words);

// An example with every key explained.
[[nodiscard]] std::string exampleGroupModel();

}  // namespace study

#endif
