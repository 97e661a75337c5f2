#include "simulation/group_metadata.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

namespace simulation {
namespace {

using Json = nlohmann::ordered_json;

const char* wordFor(Spoilt spoilt) {
  if (spoilt == Spoilt::kByMotion) return "motion";
  return spoilt == Spoilt::kCutShort ? "cut short" : "no";
}

Json described(const char* description, const Json& levels) {
  return {{"Description", description}, {"Levels", levels}};
}

// An effect of 0 is none.
const char* effectOn(const std::string& region, const GroupDesign& design) {
  if (region == kGroupRegion && design.groupEffect > 0) return "group";
  return region == kConditionRegion && design.conditionEffect > 0 ? "condition" : "none";
}

Json measuresOf(const InfluenceModel& model, const std::vector<std::size_t>& voxels, std::size_t region) {
  const Measures expected = expectedMeasures(model, voxels, region);
  return {{"ref2vox", expected.ref2vox}, {"vox2ref", expected.vox2ref}, {"inst", expected.inst}};
}

Json expectedOf(const GroupDesign& design, double strength, const std::vector<std::size_t>& voxels,
                std::size_t region) {
  Json expected;
  for (std::size_t group = 0; group < kGroups.size(); ++group)
    for (std::size_t condition = 0; condition < kConditions.size(); ++condition)
      expected[kGroups[group]][kConditions[condition]] =
          measuresOf(modelOf(design, strength, group, condition), voxels, region);
  return expected;
}

Json regionsOf(const GroupDesign& design, double strength, const std::vector<std::size_t>& voxels) {
  const InfluenceModel model = plantedModel(strength);
  Json regions = Json::array();
  for (std::size_t k = 1; k < model.regions.size(); ++k) {
    const RegionModel& region = model.regions[k];
    regions.push_back({{"label", k + 1},
                       {"name", region.name},
                       {"kind", nameOf(region.kind)},
                       {"voxels", voxels[k]},
                       {"differs_by", effectOn(region.name, design)},
                       {"expected_measures", expectedOf(design, strength, voxels, k)}});
  }
  return regions;
}

Json participantOf(const Person& person) {
  return {{"participant_id", subjectName(person.number)},
          {"group", person.group},
          {"strength", person.strength},
          {"motion", person.motion},
          {"spoilt", wordFor(person.spoilt)}};
}

Json effectOf(const char* region, const char* larger, const char* smaller, double size) {
  return {
      {"region", region}, {"measure", "ref2vox"}, {"larger", larger}, {"smaller", smaller}, {"size", size}};
}

}  // namespace

std::string subjectName(int participant) {
  return (participant < 10 ? "sub-0" : "sub-") + std::to_string(participant);
}

std::string groupReadme(const GroupDesign& design) {
  return fmt::format(
      "Simulated scans of a study with two groups and two conditions\n"
      "=============================================================\n\n"
      "No person was scanned. Every participant has the same nine regions: one reference, and regions that\n"
      "it drives, that drive it, that share its noise, and that have nothing to do with it. The reference\n"
      "drives {} more strongly in the group {} than in {}, and {} more strongly in blocks of\n"
      "{} than of {}. Nothing else differs but motion: patients move more.{}\n\n"
      "derivatives/preprocessed holds the same runs with the names and the nuisance series of a\n"
      "preprocessing pipeline. Its nuisance series disturb the images as real ones do.\n"
      "derivatives/atlas holds the regions as a label image, and what was planted: study_truth.json, and\n"
      "sub-<label>_truth.json of each participant outside the blocks.\n",
      kGroupRegion, kGroups[0], kGroups[1], kConditionRegion, kConditions[0], kConditions[1],
      design.last == Spoilt::kNot ? "" : " The data of the last\nparticipant are spoilt.");
}

std::string groupParticipantsTable(const std::vector<Person>& people) {
  std::string table = "participant_id\tgroup\tage\tsex\n";
  for (const Person& person : people)
    table +=
        fmt::format("{}\t{}\t{}\t{}\n", subjectName(person.number), person.group, person.age, person.sex);
  return table;
}

std::string groupParticipantsSidecar() {
  const Json groups = {{kGroups[0], "The stronger influence"}, {kGroups[1], "The weaker influence"}};
  const Json age = {{"Description", "Drawn at random; nothing depends on it"}, {"Units", "years"}};
  const Json json = {
      {"group", described("Group of the simulated participant", groups)},
      {"age", age},
      {"sex", described("Assigned in turn; nothing depends on it", {{"F", "female"}, {"M", "male"}})}};
  return json.dump(2) + '\n';
}

std::string studyTruth(const GroupDesign& design, const DataSetOptions& options,
                       const std::vector<std::size_t>& regionVoxels, const std::vector<Person>& people) {
  Json json = {{"description", "Group effects planted by tavmap simulate"},
               {"seed", options.seed},
               {"strength", options.strength},
               {"spread", design.spread}};
  json["effects"] = {
      {"group", effectOf(kGroupRegion, kGroups[0], kGroups[1], design.groupEffect)},
      {"condition", effectOf(kConditionRegion, kConditions[0], kConditions[1], design.conditionEffect)}};
  json["regions"] = regionsOf(design, options.strength, regionVoxels);
  json["participants"] = Json::array();
  for (const Person& person : people) json["participants"].push_back(participantOf(person));
  return json.dump(2) + '\n';
}

}  // namespace simulation
