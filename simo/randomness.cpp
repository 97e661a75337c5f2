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

#if defined(__GLIBC__)

// The C library's additive feedback generator at its default size, in storage of our own.
class Generator {
 public:
  void seed(unsigned value) {
    if (started_) {
      srandom_r(value, &data_);
    } else {
      initstate_r(value, buffer_, sizeof buffer_, &data_);
      started_ = true;
    }
  }
  int next() {
    if (!started_) seed(1);
    std::int32_t number = 0;
    random_r(&data_, &number);
    return number;
  }

 private:
  random_data data_{};  // points into buffer_: the generator must not move
  alignas(std::int32_t) char buffer_[128]{};
  bool started_ = false;
};

thread_local constinit Generator generator;

#else

static_assert(RAND_MAX == kRandomMax, "the normal numbers need rand() to reach 2^31 - 1");

struct Generator {
  void seed(unsigned value) { std::srand(value); }
  int next() { return std::rand(); }
};

Generator generator;

#endif

}  // namespace

void seedRandom(unsigned seed) {
  generator.seed(seed);
}

int nextRandom() {
  return generator.next();
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
