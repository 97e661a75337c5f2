#include "workbench/run_entry.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>

#include "formats/json_file.h"

namespace workbench {
namespace {

constexpr std::array<const char*, 6> kStates = {"queued", "running", "done", "failed", "cancelled", "interrupted"};
constexpr std::streamoff kTail = 8192;

RunState stateNamed(const formats::JsonPlace& place) {
  const auto found = std::find(kStates.begin(), kStates.end(), place.text());
  if (found == kStates.end()) place.fail("is no state of a run", "Remove the file; runs go on when started anew");
  return static_cast<RunState>(found - kStates.begin());
}

RunEntry entryFrom(const formats::JsonPlace& place) {
  RunEntry entry;
  entry.id = place.member("id").integer();
  entry.title = place.member("title").text();
  entry.request = place.member("request").text();
  entry.outputFolder = place.member("outputFolder").text();
  entry.outputName = place.member("outputName").text();
  entry.state = stateNamed(place.member("state"));
  entry.progress = place.member("progress").number();
  entry.message = place.member("message").text();
  entry.log = place.member("log").text();
  return entry;
}

}  // namespace

const char* nameOf(RunState state) {
  return kStates[static_cast<std::size_t>(state)];
}

nlohmann::ordered_json keptJson(const RunEntry& entry) {
  return {{"id", entry.id},
          {"title", entry.title},
          {"request", entry.request.string()},
          {"outputFolder", entry.outputFolder.string()},
          {"outputName", entry.outputName},
          {"state", nameOf(entry.state)},
          {"progress", entry.progress},
          {"message", entry.message},
          {"log", entry.log.string()}};
}

std::vector<RunEntry> entriesFromText(const std::string& text, const std::string& path) {
  const formats::Json json = formats::parseJson(text, path);
  const formats::JsonPlace runs = formats::JsonPlace(json, path).member("runs");
  std::vector<RunEntry> entries;
  for (std::size_t i = 0; i < runs.elements(); ++i) entries.push_back(entryFrom(runs.element(i)));
  return entries;
}

std::vector<std::string> lastLines(const std::filesystem::path& file, std::size_t most) {
  std::ifstream stream(file, std::ios::binary | std::ios::ate);
  const std::streamoff size = stream ? std::streamoff(stream.tellg()) : 0;
  stream.seekg(std::max<std::streamoff>(0, size - kTail));
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    if (!line.empty()) lines.push_back(line);
  if (lines.size() > most) lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(most));
  return lines;
}

}  // namespace workbench
