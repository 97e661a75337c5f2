#include "simulation/truth.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"

namespace simulation {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kRemedy = "Give the truth.json that tavmap simulate wrote";
constexpr const char* kEquations =
    "r(t) = autoregression r(t-1) + sum of drive * region mean(t-1) + e_r(t); "
    "voxel(t) = autoregression voxel(t-1) + follow r(t-1) + e_v(t); "
    "e_v = share e_r + sqrt(1 - share^2) (sqrt(coherence) region noise + sqrt(1 - coherence) voxel noise); "
    "all noise standard normal";

Json toJson(const TruthRegion& region) {
  const RegionModel& model = region.model;
  return {{"label", region.label},
          {"name", model.name},
          {"kind", nameOf(model.kind)},
          {"voxels", region.voxels},
          {"coefficients",
           {{"autoregression", model.autoregression},
            {"follow", model.follow},
            {"drive", model.drive},
            {"share", model.share},
            {"coherence", model.coherence}}},
          {"expected_measures",
           {{"ref2vox", region.expected.ref2vox},
            {"vox2ref", region.expected.vox2ref},
            {"inst", region.expected.inst}}}};
}

// The library would cut off what does not fit.
template <typename Integer>
Integer wholeNumber(const Json& value) {
  const bool fits = value.is_number_unsigned()
                        ? std::in_range<Integer>(value.get<std::uint64_t>())
                        : value.is_number_integer() && std::in_range<Integer>(value.get<std::int64_t>());
  if (!fits) throw std::invalid_argument("a number is not whole, or out of range");
  return value.get<Integer>();
}

TruthRegion regionFromJson(const Json& json) {
  TruthRegion region;
  region.label = wholeNumber<std::int32_t>(json.at("label"));
  region.model.name = json.at("name").get<std::string>();
  region.voxels = wholeNumber<std::size_t>(json.at("voxels"));
  const std::string kind = json.at("kind").get<std::string>();
  if (!kindFromName(kind, region.model.kind))
    throw std::invalid_argument(fmt::format("unknown kind \"{}\"", kind));
  const Json& weights = json.at("coefficients");
  region.model.autoregression = weights.at("autoregression").get<double>();
  region.model.follow = weights.at("follow").get<double>();
  region.model.drive = weights.at("drive").get<double>();
  region.model.share = weights.at("share").get<double>();
  region.model.coherence = weights.at("coherence").get<double>();
  const Json& measures = json.at("expected_measures");
  region.expected = {measures.at("ref2vox").get<double>(), measures.at("vox2ref").get<double>(),
                     measures.at("inst").get<double>()};
  return region;
}

Truth truthFromJson(const Json& json) {
  Truth truth;
  truth.seed = wholeNumber<std::uint64_t>(json.at("seed"));
  truth.strength = json.at("strength").get<double>();
  for (const Json& region : json.at("regions")) truth.regions.push_back(regionFromJson(region));
  if (truth.regions.empty() || truth.regions.front().model.kind != Kind::kReference)
    throw std::invalid_argument("the first region is not the reference");
  return truth;
}

}  // namespace

Truth truthOf(const InfluenceModel& model, const std::vector<std::size_t>& regionVoxels, std::uint64_t seed,
              double strength) {
  Truth truth{seed, strength, {}};
  for (std::size_t k = 0; k < model.regions.size(); ++k) {
    const Measures expected = k == 0 ? Measures{} : expectedMeasures(model, regionVoxels, k);
    truth.regions.push_back({static_cast<std::int32_t>(k + 1), model.regions[k], regionVoxels[k], expected});
  }
  return truth;
}

void writeTruth(const std::string& path, const Truth& truth) {
  Json regions = Json::array();
  for (const TruthRegion& region : truth.regions) regions.push_back(toJson(region));
  const Json json = {{"description", "Influences planted by tavmap simulate"},
                     {"seed", truth.seed},
                     {"strength", truth.strength},
                     {"order", 1},
                     {"equations", kEquations},
                     {"regions", regions}};
  formats::writeTextFile(path, json.dump(2) + '\n');
}

Truth readTruth(const std::string& path) {
  return parseTruth(formats::readTextFile(path), path);
}

Truth parseTruth(const std::string& text, const std::string& path) {
  try {
    return truthFromJson(Json::parse(text));
  } catch (const std::exception& error) {  // of the JSON library, or thrown above
    throw formats::FileError(path, std::string("it is no truth file: ") + error.what(), kRemedy);
  }
}

}  // namespace simulation
