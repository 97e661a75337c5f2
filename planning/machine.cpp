#include "planning/machine.h"

#include <sys/stat.h>
#include <unistd.h>

namespace planning {
namespace {

namespace fs = std::filesystem;

// The folder, or the next above it that is there.
fs::path present(fs::path folder) {
  folder = fs::absolute(folder).lexically_normal();
  std::error_code error;
  while (!fs::exists(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
  return folder;
}

}  // namespace

double machineMegabytes() {
  const auto pages = static_cast<double>(sysconf(_SC_PHYS_PAGES)),
             size = static_cast<double>(sysconf(_SC_PAGESIZE));
  return pages > 0 && size > 0 ? pages * size / 1e6 : 0;
}

double freeMegabytes(fs::path folder) {
  std::error_code error;
  const fs::space_info space = fs::space(present(std::move(folder)), error);
  return error ? -1 : static_cast<double>(space.available) / 1e6;
}

bool shareSpace(const fs::path& a, const fs::path& b) {
  struct stat one {
  }, other{};
  return stat(present(a).c_str(), &one) == 0 && stat(present(b).c_str(), &other) == 0 &&
         one.st_dev == other.st_dev;
}

}  // namespace planning
