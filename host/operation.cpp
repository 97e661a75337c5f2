#include "host/operation.h"

#include <fmt/core.h>

#include <cmath>
#include <cstring>

namespace host {

void Operation::misuse(const std::string& why) {
  const std::string message = fmt::format("{}: {}", name_, why);
  log("PLUG-IN MISBEHAVIOUR: " + message);
  throw RunEnded{kExitFailed, "The plug-in misused the host and was stopped: " + message};
}

void Operation::logError(const std::string& why) {
  log("ERROR: " + why);
}

std::string Operation::text(const char* value, const char* what) {
  return &record(value, what);
}

std::size_t Operation::index(int value, std::size_t count, const char* what) {
  require(value >= 0 && static_cast<std::size_t>(value) < count,
          fmt::format("{} {} does not exist, there are {}", what, value, count));
  return static_cast<std::size_t>(value);
}

float Operation::number(float value, const char* what) {
  require(std::isfinite(value), fmt::format("the {} is not a finite number", what));
  return value;
}

std::string Operation::field(const char* bytes, std::size_t size, const char* what) {
  const std::size_t length = strnlen(bytes, size);
  require(length < size, fmt::format("the {} does not end within its {} bytes", what, size));
  return std::string(bytes, length);
}

}  // namespace host
