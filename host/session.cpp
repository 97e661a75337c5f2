#include "host/session.h"

#include <fmt/core.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "formats/file_error.h"
#include "host/html_text.h"
#include "host/map_summary.h"
#include "host/text_layout.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kTextColumns = 78;

void requireAnatomyFor(const SessionOptions& options) {
  if (!options.anatomyPath.empty()) return;
  const std::string* attached[] = {&options.vtcPath, &options.voisPath, &options.protocolPath};
  for (const std::string* path : attached)
    if (!path->empty())
      throw RunEnded{kExitBadInput, *path + " needs an anatomy to be attached to. Give one with --anatomy."};
}

std::string absoluteFolder(const std::string& path) {
  fs::path folder = fs::absolute(path).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();  // no slash at the end
  return folder.string();
}

HostIdentity identityOf(const SessionOptions& options) {
  std::string plugins = options.pluginsFolder;
  if (plugins.empty()) plugins = fs::absolute(options.pluginPath).parent_path().string();
  std::error_code ignored;
  if (!options.pluginsFolder.empty() && !fs::is_directory(plugins, ignored))
    throw RunEnded{kExitBadInput,
                   fmt::format("There is no plug-ins folder {}. Check --plugins-folder.", plugins)};
  return {options.version, absoluteFolder(fs::read_symlink("/proc/self/exe", ignored).parent_path().string()),
          absoluteFolder(plugins)};
}

void setTimeBase(const std::optional<std::int64_t>& seed) {
  if (seed) setenv("TAV_TIME_BASE", std::to_string(*seed).c_str(), 1);
}

void introduce(const PluginLibrary& library, std::ostream& out) {
  out << dialogText(library.name()) << '\n'
      << wrapped(dialogText(library.description()), kTextColumns) << '\n'
      << wrapped(dialogText(library.author()), kTextColumns) << "\n\n"
      << std::flush;
}

// The last map set comes back from its file, so that what is summed up is what was saved.
void showSavedMaps(Workspace& workspace, std::ostream& out) {
  if (workspace.savedMaps().empty()) return;
  out << "\nMap sets written:\n";
  for (const std::string& path : workspace.savedMaps()) out << "  " << path << '\n';
  workspace.loadMaps(workspace.savedMaps().back());
  out << "Maps of the last one:\n" << summaryText(*workspace.maps(), workspace) << std::flush;
}

RunOutcome finished(const RunOutcome& run, FrontEnd& frontEnd, LogPane& logPane,
                    const SessionOptions& options) {
  const std::string left = frontEnd.finish();
  const bool logWritten = logPane.close();
  if (run.exitCode != kExitDone) return run;
  if (!logWritten)
    return {kExitFailed, fmt::format("The log file {} could not be written to its end; check the free space.",
                                     options.logPath)};
  if (!left.empty()) return {kExitBadInput, left};
  return run;
}

RunOutcome sessionOutcome(const SessionOptions& options, FrontEnd& frontEnd, std::ostream& out) {
  const HostIdentity identity = identityOf(options);
  setTimeBase(options.seed);
  LogPane logPane(frontEnd, options.quiet);
  if (!options.logPath.empty()) logPane.writeTo(options.logPath);
  Workspace workspace;
  openWorkspace(options, workspace, logPane);
  const RunOutcome run = runPlugin(options.pluginPath, workspace, frontEnd, logPane, identity,
                                   [&](const PluginLibrary& library) {
                                     if (!options.quiet) introduce(library, out);
                                   });
  if (!options.quiet) showSavedMaps(workspace, out);
  return finished(run, frontEnd, logPane, options);
}

}  // namespace

std::optional<HostVersion> parseVersion(const std::string& text) {
  HostVersion version;
  int used = 0;
  const int fields =
      std::sscanf(text.c_str(), "%5d.%5d.%5d%n", &version.major, &version.minor, &version.patch, &used);
  if (fields != 3 || static_cast<std::size_t>(used) != text.size()) return std::nullopt;
  return version;
}

void openWorkspace(const SessionOptions& options, Workspace& workspace, LogPane& logPane) {
  requireAnatomyFor(options);
  if (!options.anatomyPath.empty()) workspace.openAnatomy(options.anatomyPath);
  if (!options.vtcPath.empty()) workspace.linkVtc(options.vtcPath);
  if (!options.voisPath.empty())
    for (const std::string& remark : workspace.loadVois(options.voisPath, options.voiTablePath))
      logPane.append(remark);
  if (!options.protocolPath.empty()) workspace.loadProtocol(options.protocolPath);
}

int runSession(const SessionOptions& options, FrontEnd& frontEnd, std::ostream& out, std::ostream& err) {
  RunOutcome outcome{};
  try {
    outcome = sessionOutcome(options, frontEnd, out);
  } catch (const RunEnded& end) {
    outcome = {end.exitCode, end.message};
  } catch (const formats::FileError& error) {
    outcome = {error.fault() == formats::Fault::kInput ? kExitBadInput : kExitFailed, error.what()};
  }
  if (!outcome.message.empty()) err << "tavmap: " << outcome.message << '\n';
  return outcome.exitCode;
}

}  // namespace host
