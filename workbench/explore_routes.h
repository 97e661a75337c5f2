// The endpoints of exploring.
#ifndef TAVMAP_WORKBENCH_EXPLORE_ROUTES_H
#define TAVMAP_WORKBENCH_EXPLORE_ROUTES_H

#include <vector>

#include "workbench/explore.h"
#include "workbench/route_table.h"

namespace workbench {

// They borrow `explore`.
[[nodiscard]] std::vector<Route> exploreRoutes(Explore& explore);

}  // namespace workbench

#endif
