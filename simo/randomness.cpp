#include "simo/randomness.h"

#include <charconv>
#include <cstdlib>
#include <ctime>
#include <mutex>

namespace simo {
namespace {

std::mutex baseMutex;
std::optional<std::int64_t> chosenBase;

std::optional<std::int64_t> baseSetByProgram() {
  const std::lock_guard lock(baseMutex);
  return chosenBase;
}

std::optional<std::int64_t> baseSetByEnvironment() {
  const char* const text = std::getenv("TAV_TIME_BASE");
  return text == nullptr ? std::nullopt : parseTimeBase(text);
}

thread_local constinit RandomStream stream;

}  // namespace

RandomStream& randomStream() {
  return stream;
}

std::int64_t timeBase() {
  if (const auto base = baseSetByProgram()) return *base;
  if (const auto base = baseSetByEnvironment()) return *base;
  return static_cast<std::int64_t>(std::time(nullptr));
}

void setTimeBase(std::optional<std::int64_t> base) {
  const std::lock_guard lock(baseMutex);
  chosenBase = base;
}

std::optional<std::int64_t> parseTimeBase(std::string_view text) {
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

}  // namespace simo
