// What the maps of a request can be looked at on.
#ifndef TAVMAP_WORKBENCH_RESULT_UNDERLAYS_H
#define TAVMAP_WORKBENCH_RESULT_UNDERLAYS_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "workbench/folder_guard.h"

namespace workbench {

// [{"folder", "path", "words"}], the best first: the anatomy that the request named, where it may be read,
// that on the grid of the runs, the mean image. Those that are not there are left out. Throws Refusal 404
// when no request of this name has results in the folder.
[[nodiscard]] nlohmann::ordered_json underlaysOf(const std::filesystem::path& folder,
                                                 const std::string& prefix, const FolderGuard& folders);

}  // namespace workbench

#endif
