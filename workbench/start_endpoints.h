// The page itself, the start of its session, and the folders that it may read.
#ifndef TAVMAP_WORKBENCH_START_ENDPOINTS_H
#define TAVMAP_WORKBENCH_START_ENDPOINTS_H

#include <string>
#include <vector>

#include "workbench/access_guard.h"
#include "workbench/folder_guard.h"
#include "workbench/route_table.h"

namespace workbench {

// What the page is told first.
struct StartWords {
  std::string version;
  bool explore = false, plugin = false, bids = false;
  bool ssh = false;  // the program was started over a connection to another machine
};

// All borrow what they are given.
[[nodiscard]] std::vector<Route> pageRoutes();
[[nodiscard]] std::vector<Route> startRoutes(const AccessGuard& access, const FolderGuard& folders,
                                             const StartWords& words);
[[nodiscard]] std::vector<Route> fileRoutes(const FolderGuard& folders);

}  // namespace workbench

#endif
