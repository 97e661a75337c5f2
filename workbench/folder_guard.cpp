#include "workbench/folder_guard.h"

#include <fmt/core.h>

#include <algorithm>
#include <system_error>

#include "request/problem.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path& part) {
  return part.string().starts_with('.');
}

// "." and "..", too, begin with a point.
bool hasHiddenPart(const fs::path& relative) {
  return std::any_of(relative.begin(), relative.end(), isHidden);
}

fs::path canonicalOr404(const fs::path& path, const std::string& shown) {
  std::error_code error;
  fs::path canonical = fs::canonical(path, error);
  if (error)
    throw Refusal(404, fmt::format("There is no {}, or it cannot be read: {}.", shown, error.message()));
  return canonical;
}

[[noreturn]] void refuse(const std::string& shown) {
  throw Refusal(403,
                fmt::format("{} is not in the folders that this workbench may read. Start it with --folder "
                            "for further ones.",
                            shown));
}

// "data", "data-2", ...
std::string freeName(const std::vector<AllowedFolder>& folders, const fs::path& path) {
  const std::string stem = path.has_filename() ? path.filename().string() : "root";
  const auto isTaken = [&](const std::string& name) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const auto& folder) { return folder.name == name; });
  };
  std::string name = stem;
  for (int number = 2; isTaken(name); ++number) name = fmt::format("{}-{}", stem, number);
  return name;
}

}  // namespace

bool isAtOrBelow(const fs::path& path, const fs::path& folder) {
  const auto ends = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return ends.first == folder.end();
}

void FolderGuard::allow(const fs::path& folder) {
  std::error_code error;
  fs::path path = fs::weakly_canonical(fs::absolute(folder), error);
  if (!path.has_filename()) path = path.parent_path();
  if (error || (fs::exists(path, error) && !fs::is_directory(path, error)))
    throw study::InputError(fmt::format("{} is no folder; name one that is there", folder.string()));
  const bool isKnown =
      std::any_of(folders_.begin(), folders_.end(), [&](const auto& f) { return f.path == path; });
  if (!isKnown) folders_.push_back({freeName(folders_, path), path});
}

bool FolderGuard::isAllowed(const fs::path& canonical) const {
  return std::any_of(folders_.begin(), folders_.end(), [&](const AllowedFolder& folder) {
    if (!isAtOrBelow(canonical, folder.path)) return false;
    const fs::path rest = canonical.lexically_relative(folder.path);
    return rest == "." || !hasHiddenPart(rest);
  });
}

fs::path FolderGuard::resolved(const std::string& folder, const std::string& relative) const {
  const auto found =
      std::find_if(folders_.begin(), folders_.end(), [&](const auto& known) { return known.name == folder; });
  if (found == folders_.end()) throw Refusal(404, fmt::format("There is no folder \"{}\" here.", folder));
  const fs::path path(relative);
  if (path.is_absolute() || hasHiddenPart(path) || relative.find('\0') != std::string::npos) refuse(relative);
  const fs::path canonical = canonicalOr404(found->path / path, relative);
  if (!isAllowed(canonical)) refuse(relative);
  return canonical;
}

fs::path FolderGuard::resolvedPath(const fs::path& path) const {
  if (!path.is_absolute()) refuse(path.string());
  std::error_code error;
  const fs::path canonical = fs::weakly_canonical(path, error);
  // What is elsewhere is not even said to be there or not.
  if (error || !isAllowed(canonical)) refuse(path.string());
  return canonicalOr404(path, path.string());
}

fs::path FolderGuard::resolvedForWriting(const fs::path& path) const {
  const fs::path folder = resolvedPath(path.parent_path());
  if (path.filename().empty() || isHidden(path.filename())) refuse(path.string());
  std::error_code error;
  if (fs::is_symlink(folder / path.filename(), error)) return resolvedPath(folder / path.filename());
  return folder / path.filename();
}

std::vector<FolderEntry> FolderGuard::list(const fs::path& folder) const {
  std::vector<FolderEntry> entries;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    const fs::path canonical = fs::canonical(at->path(), ignored);
    if (ignored || isHidden(at->path().filename()) || !isAllowed(canonical)) continue;
    if (at->is_directory(ignored))
      entries.push_back({at->path().filename().string(), true, 0});
    else if (at->is_regular_file(ignored))
      entries.push_back({at->path().filename().string(), false, at->file_size(ignored)});
  }
  if (error) throw Refusal(404, fmt::format("{} cannot be read: {}.", folder.string(), error.message()));
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return entries;
}

FolderGuard::Place FolderGuard::placeOf(const fs::path& path) const {
  Place place;
  std::size_t longest = 0;
  for (const AllowedFolder& folder : folders_) {
    if (!isAtOrBelow(path, folder.path) || folder.path.native().size() <= longest) continue;
    longest = folder.path.native().size();
    const fs::path rest = path.lexically_relative(folder.path);
    place = {folder.name, rest == "." ? "" : rest.string()};
  }
  return place;
}

}  // namespace workbench
