// The images of a loaded study that a page draws maps on.
#ifndef TAVMAP_WORKBENCH_EXPLORE_IMAGES_H
#define TAVMAP_WORKBENCH_EXPLORE_IMAGES_H

#include <filesystem>
#include <string>

#include "live/loaded_study.h"

namespace workbench {

// Writes the image into the folder, unless it was asked for before, and returns its path. name: "anatomy" (on
// its own grid), "mean" (of the first volumes of the first run), "labels" (of the atlas, with the intent of
// label images) or "mask" (1 where maps have values). Throws Refusal 404 for another name and for what the
// study does not have; formats::FileError.
[[nodiscard]] std::filesystem::path exploreImage(const live::LoadedStudy& study, const std::string& name,
                                                 const std::filesystem::path& folder);

}  // namespace workbench

#endif
