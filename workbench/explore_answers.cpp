// What Explore answers about what is open.
#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "request/problem.h"
#include "request/request_text.h"
#include "tav/at_once.h"
#include "workbench/exchange.h"
#include "workbench/explore.h"
#include "workbench/explore_ask.h"
#include "workbench/explore_words.h"
#include "workbench/maps_reply.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr const char* kOutside = "outside the mask";
// Directions of more voxels would keep a page waiting for seconds.
constexpr std::size_t kMostDirections = 3000;

std::size_t passingDirections(const live::LiveMaps& maps) {
  const live::LiveMap* const dtav = maps.of(tav::DTAV);
  return dtav == nullptr || dtav->thresholds.empty() ? 0 : dtav->thresholds.back().nrPassing;
}

// What the engine does not take is what the page asked wrongly.
template <class Answer>
auto answered(Answer answer) {
  try {
    return answer();
  } catch (const tav::Cancelled&) {
    throw Refusal(kConflict, "superseded");
  } catch (const study::InputError& problem) {
    throw Refusal(kBadRequest, problem.what());
  }
}

void addDirections(const live::Engine& engine, const std::atomic<bool>& cancel, MapsToSend& sent) {
  if (sent.maps.care == live::Care::kDraft || sent.maps.of(tav::DTAV) == nullptr) return;
  const std::size_t passing = passingDirections(sent.maps);
  if (passing <= kMostDirections) {
    sent.directions = engine.directions(sent.maps, cancel);
    return;
  }
  sent.warnings.push_back(
      fmt::format("{} voxels pass: their directions are tested by `tavmap run`, here for {} at most", passing,
                  kMostDirections));
}

// Whether these maps are those of what a page has on its screen: another page may have asked since.
bool isOf(const live::LiveMaps& maps, const live::Ask& ask) {
  return maps.ask.reference == ask.reference && maps.ask.condition == ask.condition &&
         maps.ask.order == ask.order && maps.ask.draws == ask.draws &&
         std::includes(maps.ask.types.begin(), maps.ask.types.end(), ask.types.begin(), ask.types.end());
}

// The maps that a page has on its screen, computed again where others were since.
std::shared_ptr<const live::LiveMaps> mapsOf(const live::Ask& ask, live::Engine& engine,
                                             std::shared_ptr<const live::LiveMaps> last) {
  if (last != nullptr && isOf(*last, ask)) return last;
  return std::make_shared<const live::LiveMaps>(
      engine.compute(ask, live::Care::kFull, std::atomic<bool>(false)));
}

// A name that files can have everywhere.
std::string fileNameFrom(const std::string& text) {
  std::string name;
  for (const char letter : text) {
    const bool isPlain = (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
                         (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '_';
    if (isPlain) name += letter;
    if (letter == ' ') name += '-';
  }
  if (name.empty())
    throw Refusal(kBadRequest, "the name has no letter or digit (a-z, A-Z, 0-9, - and _); give another one");
  return name.substr(0, 60);
}

}  // namespace

bool Explore::change(const Json& settings) {
  study::Request now;
  std::string title;
  {
    const std::lock_guard lock(mutex_);
    now = request_;
  }
  const auto found = std::find_if(choices_.begin(), choices_.end(), [&](const ExploreChoice& choice) {
    return choice.request.title == now.title && choice.request.output.prefix == now.output.prefix;
  });
  if (found == choices_.end()) throw Refusal(kConflict, "nothing is open to change; open something first");
  study::Request wanted = withSettings(found->request, settings);
  if (wanted == now) return false;
  begin(std::move(wanted));
  return true;
}

std::string Explore::maps(const Json& asked) {
  const std::shared_ptr<Open> now = opened();
  const live::Ask ask = askFrom(asked, *now->study);
  const auto care = asked.value("draft", false) ? live::Care::kDraft : live::Care::kFull;
  const auto start = std::chrono::steady_clock::now();
  return answered([&] {
    return now->latest.run([&](const std::atomic<bool>& cancel) {
      const auto maps = std::make_shared<const live::LiveMaps>(now->engine.compute(ask, care, cancel));
      now->shown = maps;
      MapsToSend sent{*maps, {}, asked.value("sequence", std::int64_t{0}), 0, {}};
      addDirections(now->engine, cancel, sent);
      const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
      sent.elapsedMs = elapsed.count();
      return encodedMaps(sent);
    });
  });
}

Json Explore::voxel(const Json& asked) {
  const std::shared_ptr<Open> now = opened();
  const live::LoadedStudy& study = *now->study;
  const std::array<double, 3> mm = pointFrom(asked, "mm");
  const std::array<int, 3> voxel = voxelAt(study.plan.space.grid, mm);
  const io::GridSize size = study.plan.space.grid.size;
  const bool isInside = voxel[0] >= 0 && voxel[1] >= 0 && voxel[2] >= 0 && voxel[0] < size.x &&
                        voxel[1] < size.y && voxel[2] < size.z;
  if (!isInside) return emptyVoxelJson(voxel, mm, kOutside);
  const auto cell = static_cast<std::uint32_t>(size.index(voxel[0], voxel[1], voxel[2]));
  const auto found = std::lower_bound(study.cells.begin(), study.cells.end(), cell);
  if (found == study.cells.end() || *found != cell) return emptyVoxelJson(voxel, mm, kOutside);
  return answered([&]() -> Json {
    return now->latest.whenFree([&]() -> Json {
      if (asked.contains("reference")) now->shown = mapsOf(askFrom(asked, study), now->engine, now->shown);
      if (now->shown == nullptr) return emptyVoxelJson(voxel, mm, "no maps yet");
      const live::LiveMaps& maps = *now->shown;
      VoxelToSend sent{study,
                       maps,
                       static_cast<std::size_t>(found - study.cells.begin()),
                       live::lookAt(study, maps, cell),
                       {}};
      for (const live::LiveMap& map : maps.maps)
        sent.nulls[map.type] = now->engine.nullValues(maps.ask, sent.index, map.type);
      return voxelJson(sent);
    });
  });
}

Json Explore::save(const Json& asked) {
  const std::shared_ptr<Open> now = opened();
  const std::string name = fileNameFrom(textOf(asked, "name"));
  const live::Ask ask = askFrom(asked, *now->study);
  return answered([&]() -> Json {
    study::Request request = live::requestFor(*now->study, ask, name);
    // The prefix stays: the random numbers of a run depend on it, and the run is to have those that were
    // shown.
    request.output.folder /= name;
    const std::string text = study::requestText(request);
    const fs::path file = fs::path(request.output.workFolder) / (name + ".toml");
    fs::create_directories(file.parent_path());
    formats::writeTextFile(file.string(), text);
    return {{"path", file.string()}, {"text", text}};
  });
}

}  // namespace workbench
