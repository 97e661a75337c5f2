// What a line that was begun may be meant to become.
#ifndef TAVMAP_HOST_COMPLETION_H
#define TAVMAP_HOST_COMPLETION_H

#include <filesystem>
#include <string>
#include <vector>

namespace host {

// The paths that begin with `typed`, as it was typed, in order; folders end with a slash. Relative ones start
// at `folder`. Hidden files are left out unless a dot was typed.
[[nodiscard]] std::vector<std::string> pathsFrom(const std::filesystem::path& folder,
                                                 const std::string& typed);

// The names that begin with `typed`, capitals or not, in their order.
[[nodiscard]] std::vector<std::string> namesFrom(const std::vector<std::string>& names,
                                                 const std::string& typed);

// All that the choices begin with; never half a character of UTF-8. choices: not empty.
[[nodiscard]] std::string sharedBeginning(const std::vector<std::string>& choices);

}  // namespace host

#endif
