// What the workbench was started with.
#ifndef TAVMAP_WORKBENCH_SOURCES_H
#define TAVMAP_WORKBENCH_SOURCES_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

// Empty paths: not given. What there is to explore: a request, a BIDS data set, or a run's files.
struct ExploreSources {
  std::filesystem::path request;  // a TOML file
  std::filesystem::path bids;
  std::filesystem::path bold, mask, events, confounds;
  double trSeconds = 0;  // 0: as the image says
  std::filesystem::path anatomy, atlas, atlasTable;
  std::filesystem::path
      workFolder;  // runs made ready, requests saved, what is known of runs that were started
  std::size_t mostBytes = std::size_t{4} << 30U;  // of time series in memory
  [[nodiscard]] bool any() const { return !request.empty() || !bids.empty() || !bold.empty(); }
};

struct PluginSources {
  std::filesystem::path plugin;  // the shared object; empty: there are no plug-in sessions
  std::filesystem::path vtc, vois, protocol;
};

struct Sources {
  ExploreSources explore;
  PluginSources plugin;
  std::vector<std::filesystem::path> results;  // folders of results
  std::vector<std::filesystem::path> folders;  // further ones that may be read
  std::filesystem::path output;                // where requests that are made here write
  int jobs = 1;                                // worker processes of each run
  std::string program;                         // the path of `tavmap`, which runs requests
  std::string version;
};

}  // namespace workbench

#endif
