// The workbench: everything behind the page, from the sources that it was started with to the routes of its
// server.
#ifndef TAVMAP_WORKBENCH_WORKBENCH_H
#define TAVMAP_WORKBENCH_WORKBENCH_H

#include <memory>
#include <string>

#include "formats/claimed_folder.h"
#include "workbench/access_guard.h"
#include "workbench/dispatcher.h"
#include "workbench/event_hub.h"
#include "workbench/explore.h"
#include "workbench/folder_guard.h"
#include "workbench/http_server.h"
#include "workbench/plugin_desk.h"
#include "workbench/report_keys.h"
#include "workbench/route_table.h"
#include "workbench/run_desk.h"
#include "workbench/sources.h"

namespace workbench {

class Workbench {
 public:
  // Takes a port (0: any) and the work folder, which must be there. Throws study::InputError for sources that
  // are not there, or a port that is taken; formats::FileError when another workbench has the work folder.
  Workbench(const Sources& sources, int port);
  ~Workbench();
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  // With the token, which opens it once per start: "http://127.0.0.1:8765/#token=...".
  [[nodiscard]] std::string address() const;
  [[nodiscard]] int port() const { return server_.port(); }
  // Answers, on threads of its own, until stop().
  void start();
  // Ends sessions, runs and computations, and then the server. What runs have finished stays.
  void stop();

 private:
  void allowFolders(const Sources& sources);
  void openDesks(const Sources& sources);
  void addRoutes(const Sources& sources);

  HttpServer server_;
  AccessGuard access_;
  FolderGuard folders_;
  ReportKeys reportKeys_;
  formats::ClaimedFolder claim_;  // its list of runs has one writer
  EventHub runNews_, pluginNews_;
  std::unique_ptr<Explore> explore_;
  std::unique_ptr<RunDesk> runs_;
  std::unique_ptr<PluginDesk> plugin_;  // null: there is no plug-in
  RouteTable routes_;
  Dispatcher dispatcher_;
};

}  // namespace workbench

#endif
