// Which results there are below a folder.
#ifndef TAVMAP_WORKBENCH_RESULT_LIST_H
#define TAVMAP_WORKBENCH_RESULT_LIST_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "workbench/folder_guard.h"

namespace workbench {

// Whether the index over all requests below a folder lies there.
[[nodiscard]] bool hasIndex(const std::filesystem::path& folder);

// Folders at or below this one that hold results of requests or of tests over participants, and those with
// the index over them, by path. Looks at most four levels down, as deep as data sets lay them, and not at
// hidden folders, links, folders that must not be read, nor more than ten thousand folders.
[[nodiscard]] std::vector<std::filesystem::path> resultFoldersIn(const std::filesystem::path& folder);

// "sub-01" of "sub-01_task-rest"; empty when there is none.
[[nodiscard]] std::string participantOf(const std::string& prefix);

// One request's results: {"folder", "path", "name", "participant", "report" or null, "references": [...],
// "failures": [...], "problem" when they cannot be read}.
[[nodiscard]] nlohmann::ordered_json requestJson(const std::filesystem::path& folder,
                                                 const std::string& prefix, const FolderGuard& folders);

}  // namespace workbench

#endif
