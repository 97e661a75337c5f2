// What a file is called in replies.
#ifndef TAVMAP_WORKBENCH_CONTENT_TYPES_H
#define TAVMAP_WORKBENCH_CONTENT_TYPES_H

#include <filesystem>
#include <string>

namespace workbench {

// By the end of its name; "application/octet-stream" for what a browser has no use for.
[[nodiscard]] std::string contentTypeOf(const std::filesystem::path& file);

}  // namespace workbench

#endif
