#include "host/file_checks.h"

#include <fmt/core.h>

#include <filesystem>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

std::string tooLong(const FileQuestion& question, const std::string& path) {
  if (path.size() <= question.maxBytes) return {};
  return fmt::format("the path has {} bytes, plug-ins take {}: {}", path.size(), question.maxBytes, path);
}

}  // namespace

std::string problemWithFileToOpen(const FileQuestion& question, const std::string& path) {
  std::error_code ignored;
  if (!fs::exists(path, ignored)) return "there is no file " + path;
  if (fs::is_directory(path, ignored)) return "this is a folder, not a file: " + path;
  return tooLong(question, path);
}

std::string problemWithFileToSave(const FileQuestion& question, const std::string& path) {
  std::error_code ignored;
  const fs::path folder = fs::path(path).parent_path();
  if (!fs::is_directory(folder, ignored)) return "there is no folder " + folder.string();
  if (!fs::path(path).has_filename()) return "a file name is missing after " + path;
  return tooLong(question, path);
}

}  // namespace host
