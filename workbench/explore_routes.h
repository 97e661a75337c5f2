// The endpoints of exploring.
#ifndef TAVMAP_WORKBENCH_EXPLORE_ROUTES_H
#define TAVMAP_WORKBENCH_EXPLORE_ROUTES_H

#include <vector>

#include "workbench/explore.h"
#include "workbench/folder_guard.h"
#include "workbench/route_table.h"

namespace workbench {

// They borrow both. folders: where saved requests are, as other tabs name files.
[[nodiscard]] std::vector<Route> exploreRoutes(Explore& explore, const FolderGuard& folders);

}  // namespace workbench

#endif
