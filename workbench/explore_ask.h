// What a page asks about maps, read from its JSON.
#ifndef TAVMAP_WORKBENCH_EXPLORE_ASK_H
#define TAVMAP_WORKBENCH_EXPLORE_ASK_H

#include <array>
#include <nlohmann/json_fwd.hpp>

#include "live/live_maps.h"
#include "live/loaded_study.h"

namespace workbench {

// "reference", "condition", "types" (without: the maps of the study) and of "settings" order and draws.
// Throws Refusal 400 for what is missing, of another kind or unknown.
[[nodiscard]] live::Ask askFrom(const nlohmann::ordered_json& json, const live::LoadedStudy& study);

// A point in millimetres.
[[nodiscard]] std::array<double, 3> pointFrom(const nlohmann::ordered_json& json, const char* key);

// The request with "runs", "confounds", "censoring" and "order" of the settings.
[[nodiscard]] study::Request withSettings(study::Request request, const nlohmann::ordered_json& settings);

}  // namespace workbench

#endif
