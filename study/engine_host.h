// A host without dialogs for the engine: a workspace with the run's grid, and a log pane that only
// this program reads. One at a time in a process.
#ifndef TAVMAP_STUDY_ENGINE_HOST_H
#define TAVMAP_STUDY_ENGINE_HOST_H

#include <filesystem>
#include <functional>
#include <string>

#include "host/log_pane.h"
#include "host/run.h"
#include "host/workspace.h"

namespace study {

class EngineHost {
 public:
  // image: any image of the runs' grid. vtc: one of the prepared runs; its sidecar places the maps.
  // percent receives the engine's own progress within a condition, 0 to 100. Binds the host's
  // operations. Throws formats::FileError, and RunError when the program exports no operations.
  EngineHost(const std::filesystem::path& image, const std::filesystem::path& vtc,
             std::function<void(int)> percent);
  ~EngineHost();
  EngineHost(const EngineHost&) = delete;
  EngineHost& operator=(const EngineHost&) = delete;

  // What the host itself complained about, such as a map set that could not be written; empty when
  // all went well.
  std::string complaints() const;

 private:
  class Ears;
  std::unique_ptr<Ears> ears_;
  host::LogPane logPane_;
  host::HostIdentity identity_;
  host::Workspace workspace_;
  host::Run run_;
};

// "// TAV>\t40%..." gives 40; -1 for any other line.
int percentIn(std::string_view logLine);

}  // namespace study

#endif
