// What `tavmap workbench` may be given, and what it makes of it.
#ifndef TAVMAP_APP_WORKBENCH_SOURCES_H
#define TAVMAP_APP_WORKBENCH_SOURCES_H

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "workbench/sources.h"

namespace app {

struct WorkbenchArguments {
  std::string path;  // a request, a results folder or a BIDS folder
  std::string bold, mask, events, confounds, anatomy, atlas, atlasTable;
  double trSeconds = 0;
  std::string out, work, memory;
  std::string plugin, vtc, vois, protocol;
  std::vector<std::string> folders;
  int port = 0, jobs = 1;
  bool noBrowser = false;
};

void addWorkbenchSources(CLI::App& command, WorkbenchArguments& arguments);

// Looks at the path to see which of the three it is. Throws UsageError for one that is none, or files without
// --bold.
[[nodiscard]] workbench::Sources sourcesOf(const WorkbenchArguments& arguments);
// Absolute; made when it is not there.
[[nodiscard]] std::filesystem::path workFolderOf(const WorkbenchArguments& arguments);

}  // namespace app

#endif
