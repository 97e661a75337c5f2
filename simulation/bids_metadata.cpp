#include "simulation/bids_metadata.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

namespace simulation {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kBidsVersion = "1.8.0";
constexpr const char* kSimulator = "tavmap simulate";

std::string textOf(const Json& json) {
  return json.dump(2) + '\n';
}

Json boldSidecar(double trMs) {
  return {{"TaskName", kTask}, {"RepetitionTime", trMs / 1000}};
}

}  // namespace

std::string rawDescription() {
  return textOf({{"Name", "Simulated scans with planted influences"},
                 {"BIDSVersion", kBidsVersion},
                 {"DatasetType", "raw"},
                 {"License", "CC0"},
                 {"Authors", {"The Tavmap authors", "The program tavmap simulate"}},
                 {"GeneratedBy", {{{"Name", kSimulator}}}}});
}

std::string derivativeDescription(const std::string& name) {
  return textOf({{"Name", name},
                 {"BIDSVersion", kBidsVersion},
                 {"DatasetType", "derivative"},
                 {"License", "CC0"},
                 {"GeneratedBy", {{{"Name", kSimulator}}}}});
}

std::string readmeText() {
  return "Simulated scans with planted influences\n"
         "=======================================\n\n"
         "No person was scanned. Every participant has the same nine regions: one reference, and regions "
         "that\n"
         "it drives, that drive it, that share its noise, and that have nothing to do with it. The task has\n"
         "blocks of faces and houses, which change nothing: the influences hold throughout.\n\n"
         "derivatives/preprocessed holds the same runs with the names and the nuisance series of a\n"
         "preprocessing pipeline. Its nuisance series disturb the images as real ones do.\n"
         "derivatives/atlas holds the regions as a label image, and sub-<label>_truth.json: what was "
         "planted.\n";
}

std::string participantsTable(int participants) {
  std::string table = "participant_id\tage\n";
  for (int participant = 1; participant <= participants; ++participant)
    table += fmt::format("{}{}\tn/a\n", participant < 10 ? "sub-0" : "sub-", participant);
  return table;
}

std::string participantsSidecar() {
  return textOf(
      {{"age", {{"Description", "Not given: the participants are simulated"}, {"Units", "years"}}}});
}

std::string eventsSidecar() {
  const Json levels = {{"faces", "A block of faces"}, {"houses", "A block of houses"}};
  return textOf({{"trial_type", {{"Description", "What was shown"}, {"Levels", levels}}}});
}

std::string anatomySidecar() {
  return textOf({{"Modality", "MR"}, {"SkullStripped", true}});
}

std::string rawBoldSidecar(double trMs, int slices) {
  Json sidecar = boldSidecar(trMs);
  sidecar["SliceTiming"] = std::vector<double>(static_cast<std::size_t>(slices), 0);
  sidecar["TaskDescription"] = "Blocks of faces and houses with rest between them";
  return textOf(sidecar);
}

std::string preprocessedBoldSidecar(double trMs) {
  Json sidecar = boldSidecar(trMs);
  sidecar["SkullStripped"] = false;
  sidecar["SliceTimingCorrected"] = false;
  return textOf(sidecar);
}

std::string maskSidecar() {
  return textOf({{"Type", "Brain"}});
}

std::string confoundsSidecar(const std::vector<Confound>& confounds) {
  Json sidecar = Json::object();
  for (const Confound& confound : confounds)
    if (confound.name.starts_with("a_comp_cor"))
      sidecar[confound.name] = {{"Method", "aCompCor"}, {"Mask", "combined"}, {"Retained", true}};
  return textOf(sidecar);
}

}  // namespace simulation
