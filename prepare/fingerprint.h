// Keys that say whether something was made from the same inputs with the same settings.
#ifndef TAVMAP_PREPARE_FINGERPRINT_H
#define TAVMAP_PREPARE_FINGERPRINT_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace study {

// 128 bits of FNV-1a (two 64-bit runs with different starts): tells accidents apart, not attacks.
// Every value goes in with its name and length, so that neighbouring values cannot run together.
class Fingerprint {
 public:
  Fingerprint& add(std::string_view name, std::string_view value);
  Fingerprint& add(std::string_view name, const char* value) { return add(name, std::string_view(value)); }
  Fingerprint& add(std::string_view name, double value);
  Fingerprint& add(std::string_view name, std::int64_t value);
  Fingerprint& add(std::string_view name, int value) { return add(name, static_cast<std::int64_t>(value)); }
  // The file's absolute path, size and time of last change; its contents are not read. An empty
  // path counts as "no file".
  Fingerprint& addFile(std::string_view name, const std::filesystem::path& file);

  std::string hex() const;  // 32 digits

 private:
  void mix(std::string_view bytes);
  std::uint64_t low_ = 14695981039346656037ULL;
  std::uint64_t high_ = 1099511628211ULL * 31;
};

// A seed for one piece of work, derived from the study's seed and the piece's name, so that a
// result does not depend on what else is computed or in which order. Below 2^31.
[[nodiscard]] std::uint32_t derivedSeed(std::uint32_t seed, std::string_view name);

}  // namespace study

#endif
