// Runs over the server.
#ifndef TAVMAP_WORKBENCH_RUN_ENDPOINTS_H
#define TAVMAP_WORKBENCH_RUN_ENDPOINTS_H

#include <vector>

#include "workbench/event_hub.h"
#include "workbench/folder_guard.h"
#include "workbench/route_table.h"
#include "workbench/run_desk.h"

namespace workbench {

// Borrows all.
[[nodiscard]] std::vector<Route> runRoutes(RunDesk& desk, EventHub& news, const FolderGuard& folders);

// As pages see a run; outputs are named by folders of the guard.
[[nodiscard]] nlohmann::ordered_json runJson(const RunEntry& entry, const FolderGuard& folders);

// A run of this request file. Throws study::InputError for one that cannot be read, Refusal 403 when it would write
// elsewhere than in the allowed folders.
[[nodiscard]] RunEntry wantedRun(const std::filesystem::path& request, const FolderGuard& folders);

}  // namespace workbench

#endif
