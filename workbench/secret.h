// Secrets of one start of the workbench.
#ifndef TAVMAP_WORKBENCH_SECRET_H
#define TAVMAP_WORKBENCH_SECRET_H

#include <string>
#include <string_view>

namespace workbench {

// 256 bits of the system's randomness, as 64 hexadecimal digits. Throws std::system_error.
[[nodiscard]] std::string newSecret();

// In a time that does not tell how much of it is right.
[[nodiscard]] bool isSameSecret(std::string_view given, std::string_view secret);

}  // namespace workbench

#endif
