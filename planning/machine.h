// What this machine has.
#ifndef TAVMAP_PLANNING_MACHINE_H
#define TAVMAP_PLANNING_MACHINE_H

#include <filesystem>

namespace planning {

// Megabytes of 10^6 bytes. Memory of the machine; 0: not known.
[[nodiscard]] double machineMegabytes();
// Free where a folder is, or would be made; negative: not known.
[[nodiscard]] double freeMegabytes(std::filesystem::path folder);
// Whether two folders share their space, as far as can be seen now.
[[nodiscard]] bool shareSpace(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace planning

#endif
