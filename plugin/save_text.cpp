#include "plugin/save_text.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>

namespace {

bool writeAndClose(std::FILE* file, const std::string& text) {
  bool ok = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  ok = std::fflush(file) == 0 && ok;
  const int reason = errno;  // fclose() may succeed after a failed write
  ok = std::fclose(file) == 0 && ok;
  if (!ok && reason != 0) errno = reason;
  return ok;
}

bool replaceFile(const std::string& temporary, const std::string& path, const std::string& text) {
  std::FILE* const file = std::fopen(temporary.c_str(), "wb");
  if (file == nullptr) return false;
  if (writeAndClose(file, text) && std::rename(temporary.c_str(), path.c_str()) == 0) return true;
  const int reason = errno;
  std::remove(temporary.c_str());
  errno = reason;
  return false;
}

// Beside the file, and short: the final name may be as long as names can be. The process id keeps two runs
// with one prefix from writing into each other's temporary file, the hash other files of a folder.
std::string temporaryFor(const std::string& path) {
  const std::string::size_type slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  return folder + ".tav" + std::to_string(std::hash<std::string>{}(path)) + "-" + std::to_string(getpid()) +
         ".tmp";
}

}  // namespace

std::string saveTextWhole(const std::string& path, const std::string& text) {
  const std::string temporary = temporaryFor(path);
  errno = 0;
  if (replaceFile(temporary, path, text)) return "";
  return errno != 0 ? std::strerror(errno) : "unknown error";
}
