// A study of two groups under two conditions: who takes part, and which influences hold when.
//
// In region Driven-A the reference's influence (follow) differs between the groups, in Driven-B between the
// conditions; everywhere else and outside the blocks nothing differs. With the effect g a group or condition
// has the factor 1 + g / 2, the other 1 - g / 2. Driven regions do not act on anything, so that every other
// measure stays as it is. Each participant has a strength of his own besides.
#ifndef TAVMAP_SIMULATION_GROUP_DESIGN_H
#define TAVMAP_SIMULATION_GROUP_DESIGN_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "formats/protocol.h"
#include "simulation/influence_model.h"

namespace simulation {

// How the data of the last participant are spoilt: so much motion that censoring leaves nothing, or a last
// run that breaks off after kVolumesOfCutRun volumes.
enum class Spoilt { kNot, kByMotion, kCutShort };
inline constexpr int kVolumesOfCutRun = 12;

struct GroupDesign {
  int participants = 16;
  double groupEffect = 0.8, conditionEffect = 0.8;  // 0 to 1
  double spread = 0.1;  // of participants' strengths: standard deviation, 0 to 0.3
  Spoilt last = Spoilt::kByMotion;
};

// The larger influence is that of the first.
inline constexpr std::array<const char*, 2> kGroups = {"control", "patient"};
inline constexpr std::array<const char*, 2> kConditions = {"faces", "houses"};
inline constexpr const char* kGroupRegion = "Driven-A";
inline constexpr const char* kConditionRegion = "Driven-B";

struct Person {
  int number = 1;          // from 1
  std::string group = {};  // empty: there are no groups
  int age = 0;             // years
  char sex = 'n';          // F or M
  double strength = 1;     // of all influences
  double motion = 1;       // factor, see drawConfounds()
  Spoilt spoilt = Spoilt::kNot;
  InfluenceModel model;                               // outside the blocks
  std::map<std::string, InfluenceModel> during = {};  // in those of a condition; missing: as outside
};

// Empty when the study can be simulated, else what is wrong, in words.
[[nodiscard]] std::string problemWith(const GroupDesign& design);

// Groups alternate, sexes alternate within a group, patients move more: neither age nor sex has to do with
// an influence, motion with the group alone. The same seed gives the same people.
[[nodiscard]] std::vector<Person> peopleOf(const GroupDesign& design, std::uint64_t seed, double strength);

// The influences in a group's blocks of a condition (index into kGroups, kConditions).
[[nodiscard]] InfluenceModel modelOf(const GroupDesign& design, double strength, std::size_t group,
                                     std::size_t condition);

// What holds at a volume of a run, from 1.
[[nodiscard]] const InfluenceModel& modelAt(const Person& person, const formats::Protocol& blocks,
                                            int volume);

}  // namespace simulation

#endif
