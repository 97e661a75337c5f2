// Results over the server.
#ifndef TAVMAP_WORKBENCH_RESULT_ENDPOINTS_H
#define TAVMAP_WORKBENCH_RESULT_ENDPOINTS_H

#include <vector>

#include "workbench/folder_guard.h"
#include "workbench/report_keys.h"
#include "workbench/route_table.h"

namespace workbench {

// Borrows both.
[[nodiscard]] std::vector<Route> resultRoutes(const FolderGuard& folders, ReportKeys& keys);

}  // namespace workbench

#endif
