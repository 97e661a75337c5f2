// Results over the server.
#ifndef TAVMAP_WORKBENCH_RESULT_ENDPOINTS_H
#define TAVMAP_WORKBENCH_RESULT_ENDPOINTS_H

#include <vector>

#include "workbench/folder_guard.h"
#include "workbench/route_table.h"

namespace workbench {

// Borrows it.
[[nodiscard]] std::vector<Route> resultRoutes(const FolderGuard& folders);

}  // namespace workbench

#endif
