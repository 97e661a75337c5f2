#include "prepare/fingerprint.h"

#include <sys/stat.h>

#include <charconv>
#include <cstdio>

namespace study {
namespace {

constexpr std::uint64_t kPrime = 1099511628211ULL;

std::string digits(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;  // shortest that reads back exactly
  return {text, end};
}

}  // namespace

void Fingerprint::mix(std::string_view bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    low_ = (low_ ^ byte) * kPrime;
    high_ = (high_ ^ byte) * kPrime;
  }
}

Fingerprint& Fingerprint::add(std::string_view name, std::string_view value) {
  mix(std::to_string(name.size()) + ":");
  mix(name);
  mix(std::to_string(value.size()) + ":");
  mix(value);
  return *this;
}

Fingerprint& Fingerprint::add(std::string_view name, double value) {
  return add(name, std::string_view(digits(value)));
}

Fingerprint& Fingerprint::add(std::string_view name, std::int64_t value) {
  return add(name, std::string_view(std::to_string(value)));
}

Fingerprint& Fingerprint::addFile(std::string_view name, const std::filesystem::path& file) {
  if (file.empty()) return add(name, "no file");
  struct stat state {};
  const std::string path = std::filesystem::absolute(file).lexically_normal().string();
  add(name, std::string_view(path));
  if (stat(path.c_str(), &state) != 0) return add("state", "missing");
  add("size", static_cast<std::int64_t>(state.st_size));
  add("seconds", static_cast<std::int64_t>(state.st_mtim.tv_sec));
  return add("nanoseconds", static_cast<std::int64_t>(state.st_mtim.tv_nsec));
}

std::string Fingerprint::hex() const {
  char text[33];
  std::snprintf(text, sizeof text, "%016llx%016llx", static_cast<unsigned long long>(high_),
                static_cast<unsigned long long>(low_));
  return text;
}

std::uint32_t derivedSeed(std::uint32_t seed, std::string_view name) {
  Fingerprint mixed;
  mixed.add("seed", static_cast<std::int64_t>(seed)).add("name", name);
  std::uint32_t value = 0;
  const std::string hex = mixed.hex();
  std::from_chars(hex.data() + 24, hex.data() + 32, value, 16);
  return value & 0x7fffffffU;
}

}  // namespace study
