// Plug-in sessions over the server.
#ifndef TAVMAP_WORKBENCH_PLUGIN_ENDPOINTS_H
#define TAVMAP_WORKBENCH_PLUGIN_ENDPOINTS_H

#include <vector>

#include "workbench/event_hub.h"
#include "workbench/plugin_desk.h"
#include "workbench/route_table.h"

namespace workbench {

// Borrows both.
[[nodiscard]] std::vector<Route> pluginRoutes(PluginDesk& desk, EventHub& news);

}  // namespace workbench

#endif
