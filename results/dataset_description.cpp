#include "results/dataset_description.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

namespace study {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

// Who made the data that the maps are made from. Nobody is made up, and what others may do with the maps
// their owner says: there is no License.
Json authorsOfInput(const Request& request) {
  const auto raw = request.datasets.find("raw");
  if (raw == request.datasets.end()) return {};
  std::ifstream stream(raw->second / "dataset_description.json");
  const Json description = Json::parse(stream, nullptr, false);
  if (!description.is_object() || !description.contains("Authors")) return {};
  const Json& authors = description["Authors"];
  const bool areNames =
      authors.is_array() &&
      std::all_of(authors.begin(), authors.end(), [](const Json& author) { return author.is_string(); });
  return areNames ? authors : Json();
}

}  // namespace

Json datasetDescription(const Request& request, const std::string& version) {
  Json json;
  json["Name"] = "Tavmap: maps of directed influence";
  json["BIDSVersion"] = "1.8.0";
  json["DatasetType"] = "derivative";
  json["GeneratedBy"] = Json::array({{{"Name", "Tavmap"}, {"Version", version}}});
  Json links = Json::object();
  for (const auto& [name, root] : request.datasets) {
    links[name] = "file://" + fs::absolute(root).lexically_normal().generic_string();
  }
  if (!links.empty()) json["DatasetLinks"] = links;
  const Json authors = authorsOfInput(request);
  if (!authors.empty()) json["Authors"] = authors;
  return json;
}

}  // namespace study
