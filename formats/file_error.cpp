#include "formats/file_error.h"

#include <fmt/core.h>

#include <utility>

namespace formats {

FileError::FileError(std::string path, std::string reason, std::string remedy, Fault fault)
    : std::runtime_error(fmt::format("{}: {}. {}.", path, reason, remedy)),
      path_(std::move(path)),
      reason_(std::move(reason)),
      remedy_(std::move(remedy)),
      fault_(fault) {}

}  // namespace formats
