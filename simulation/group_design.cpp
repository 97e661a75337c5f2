#include "simulation/group_design.h"

#include <algorithm>

#include "simulation/noise_stream.h"

namespace simulation {
namespace {

constexpr std::uint32_t kPersonStream = 2000;  // beyond those of runs and confounds
constexpr double kSpoilingMotion = 15;
constexpr int kYoungest = 20, kAges = 31;
constexpr double kMostSpread = 2;  // standard deviations
constexpr double kGreatestStrength = 1.5;

double factorOf(double effect, std::size_t index) {
  return index == 0 ? 1 + effect / 2 : 1 - effect / 2;
}

void scaleFollow(InfluenceModel& model, const std::string& region, double factor) {
  for (RegionModel& one : model.regions)
    if (one.name == region) one.follow *= factor;
}

InfluenceModel groupModel(const GroupDesign& design, double strength, std::size_t group) {
  InfluenceModel model = plantedModel(strength);
  scaleFollow(model, kGroupRegion, factorOf(design.groupEffect, group));
  return model;
}

double drawnMotion(std::size_t group, NoiseStream& random) {
  return group == 0 ? random.between(0.5, 1.2) : random.between(0.9, 2);
}

double drawnStrength(const GroupDesign& design, double strength, NoiseStream& random) {
  const double away = std::clamp(random.normal(), -kMostSpread, kMostSpread);
  return std::min(kGreatestStrength, strength * (1 + design.spread * away));
}

Person drawnPerson(const GroupDesign& design, std::uint64_t seed, double strength, int number) {
  NoiseStream random(seed, static_cast<std::uint32_t>(number), kPersonStream);
  const auto group = static_cast<std::size_t>((number - 1) % 2);
  Person person{.number = number, .group = kGroups[group], .model = {}};
  person.age = kYoungest + static_cast<int>(random.between(0, kAges));
  person.sex = (number - 1) / 2 % 2 == 0 ? 'F' : 'M';
  person.strength = drawnStrength(design, strength, random);
  person.motion = drawnMotion(group, random);
  person.model = groupModel(design, person.strength, group);
  for (std::size_t condition = 0; condition < kConditions.size(); ++condition)
    person.during[kConditions[condition]] = modelOf(design, person.strength, group, condition);
  return person;
}

}  // namespace

std::string problemWith(const GroupDesign& design) {
  // Written so that NaN is a problem, too.
  for (const double effect : {design.groupEffect, design.conditionEffect})
    if (!(effect >= 0 && effect <= 1)) return "an effect must be from 0 to 1";
  if (!(design.spread >= 0 && design.spread <= 0.3)) return "the spread must be from 0 to 0.3";
  if (design.participants < 4) return "a study of two groups needs 4 participants or more";
  return "";
}

std::vector<Person> peopleOf(const GroupDesign& design, std::uint64_t seed, double strength) {
  std::vector<Person> people;
  for (int number = 1; number <= design.participants; ++number)
    people.push_back(drawnPerson(design, seed, strength, number));
  people.back().spoilt = design.last;
  if (design.last == Spoilt::kByMotion) people.back().motion = kSpoilingMotion;
  return people;
}

InfluenceModel modelOf(const GroupDesign& design, double strength, std::size_t group, std::size_t condition) {
  InfluenceModel model = groupModel(design, strength, group);
  scaleFollow(model, kConditionRegion, factorOf(design.conditionEffect, condition));
  return model;
}

const InfluenceModel& modelAt(const Person& person, const formats::Protocol& blocks, int volume) {
  for (const formats::ProtocolCondition& condition : blocks.conditions) {
    const auto during = person.during.find(condition.name);
    if (during == person.during.end()) continue;
    for (const formats::Interval& block : condition.intervals)
      if (volume >= block.start && volume <= block.end) return during->second;
  }
  return person.model;
}

}  // namespace simulation
