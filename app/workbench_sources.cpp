#include "app/workbench_sources.h"

#include <fmt/core.h>
#include <unistd.h>

#include <system_error>

#include "app/exit_codes.h"
#include "app/memory_limit.h"
#include "app/study_options.h"

namespace app {
namespace {

namespace fs = std::filesystem;

fs::path absoluteOrEmpty(const std::string& path) {
  return path.empty() ? fs::path() : fs::absolute(path).lexically_normal();
}

void requireThere(const std::string& path, const char* option) {
  std::error_code ignored;
  if (!path.empty() && !fs::exists(path, ignored))
    throw UsageError(fmt::format("{} {}: there is no such file; check the name", option, path));
}

void requireFiles(const WorkbenchArguments& a) {
  const std::pair<const std::string*, const char*> files[] = {{&a.bold, "--bold"},
                                                              {&a.mask, "--mask"},
                                                              {&a.events, "--events"},
                                                              {&a.confounds, "--confounds"},
                                                              {&a.anatomy, "--anatomy"},
                                                              {&a.atlas, "--atlas"},
                                                              {&a.atlasTable, "--atlas-table"},
                                                              {&a.plugin, "--plugin"},
                                                              {&a.vtc, "--vtc"},
                                                              {&a.vois, "--vois"},
                                                              {&a.protocol, "--protocol"}};
  for (const auto& [path, option] : files) requireThere(*path, option);
  for (const std::string& folder : a.folders) requireThere(folder, "--folder");
}

// A raw data set and a folder of derivatives, ours too, both have dataset_description.json; ours have
// records.
bool isDataSet(const fs::path& folder) {
  std::error_code ignored;
  if (!fs::exists(folder / "dataset_description.json", ignored)) return false;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
    if (entry.path().filename().string().ends_with("_tavmap.json")) return false;
  return true;
}

void placePath(const std::string& text, workbench::Sources& sources) {
  const fs::path path = absoluteOrEmpty(text);
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) {
    if (isDataSet(path)) sources.explore.bids = path;
    sources.results.push_back(path);
  } else if (path.extension() == ".toml" && fs::exists(path, ignored)) {
    sources.explore.request = path;
  } else {
    throw UsageError(fmt::format("{} is no request (.toml), results folder or BIDS folder; name one", text));
  }
}

void placeFiles(const WorkbenchArguments& a, workbench::ExploreSources& explore) {
  explore.bold = absoluteOrEmpty(a.bold);
  explore.mask = absoluteOrEmpty(a.mask);
  explore.events = absoluteOrEmpty(a.events);
  explore.confounds = absoluteOrEmpty(a.confounds);
  explore.trSeconds = a.trSeconds;
  explore.anatomy = absoluteOrEmpty(a.anatomy);
  explore.atlas = absoluteOrEmpty(a.atlas);
  explore.atlasTable = absoluteOrEmpty(a.atlasTable);
}

// Beside the program that runs, or where it is installed.
fs::path usualPlugin() {
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  for (const char* place : {"TAVPlugin.so", "../plugin/TAVPlugin.so", "../lib/tavmap/plugins/TAVPlugin.so"})
    if (const fs::path path = program / place; fs::is_regular_file(path, ignored))
      return path.lexically_normal();
  return {};
}

// Half of this machine's memory, unless it is said.
std::size_t mostBytes(const std::string& megabytes) {
  constexpr std::size_t kMegabyte = 1'000'000;
  if (!megabytes.empty()) {
    const std::optional<double> given = megabytesOf(megabytes);
    if (!given) throw UsageError(fmt::format("--mem {}: a memory looks like 8G, 8000M or 8000", megabytes));
    return static_cast<std::size_t>(*given) * kMegabyte;
  }
  return static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) / 2 *
         static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void placePlugin(const WorkbenchArguments& a, workbench::PluginSources& plugin) {
  plugin.plugin = a.plugin.empty() ? usualPlugin() : absoluteOrEmpty(a.plugin);
  plugin.vtc = absoluteOrEmpty(a.vtc);
  plugin.vois = absoluteOrEmpty(a.vois);
  plugin.protocol = absoluteOrEmpty(a.protocol);
}

}  // namespace

void addWorkbenchSources(CLI::App& command, WorkbenchArguments& a) {
  command.add_option("path", a.path, "A request (.toml), a folder of results, or a BIDS folder");
  command.add_option("--bold", a.bold, "Explore this run, a 4-D NIfTI image");
  command.add_option("--mask", a.mask, "Its voxels");
  command.add_option("--events", a.events, "Its BIDS events table");
  command.add_option("--confounds", a.confounds, "Its confounds table");
  command.add_option("--tr", a.trSeconds, "Its repetition time in seconds, when the image does not say it")
      ->check(CLI::PositiveNumber);
  command.add_option("--anatomy", a.anatomy, "Anatomy to show the maps on, and that of plug-in sessions");
  command.add_option("--atlas", a.atlas, "Labels to choose references from");
  command.add_option("--atlas-table", a.atlasTable,
                     "Names of the labels (default: the .tsv beside the image)");
  command.add_option("-o,--out", a.out, "Where requests that are saved here write their results");
  command.add_option("-w,--work-folder", a.work,
                     "Work folder (default: tavmap-workbench in the working folder)");
  command.add_option(
      "--mem", a.memory,
      "Memory for time series that are explored, as 8G or in MB (default: half of this machine's)");
  command.add_option("-j,--jobs", a.jobs, "Worker processes of each run that is started here")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command.add_option("--plugin", a.plugin, "Plug-in of sessions (default: the TAVPlugin.so of this program)");
  command.add_option("--vtc", a.vtc, "VTC of plug-in sessions");
  command.add_option("--vois", a.vois, "VOI list of plug-in sessions: a label image, or JSON");
  command.add_option("--protocol", a.protocol,
                     "Protocol of plug-in sessions: an events table, or one of volumes");
  command.add_option("--folder", a.folders, "A further folder that the page may read; may be repeated")
      ->allow_extra_args(false);
}

fs::path workFolderOf(const WorkbenchArguments& arguments) {
  const fs::path folder = absoluteOrEmpty(arguments.work.empty() ? "tavmap-workbench" : arguments.work);
  std::error_code error;
  fs::create_directories(folder, error);
  if (error)
    throw UsageError(fmt::format("the work folder {} cannot be made ({}); give another with --work-folder",
                                 folder.string(), error.message()));
  return folder;
}

workbench::Sources sourcesOf(const WorkbenchArguments& arguments) {
  requireFiles(arguments);
  workbench::Sources sources;
  if (!arguments.path.empty()) placePath(arguments.path, sources);
  placeFiles(arguments, sources.explore);
  placePlugin(arguments, sources.plugin);
  sources.explore.workFolder = workFolderOf(arguments);
  sources.explore.mostBytes = mostBytes(arguments.memory);
  sources.output = absoluteOrEmpty(arguments.out);
  for (const std::string& folder : arguments.folders) sources.folders.push_back(absoluteOrEmpty(folder));
  sources.jobs = arguments.jobs;
  sources.program = kThisProgram;
  sources.version = softwareVersion();
  return sources;
}

}  // namespace app
