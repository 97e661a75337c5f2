#include "prepare/input_checksum.h"

#include <fstream>

#include "formats/atomic_file.h"
#include "formats/checksum.h"
#include "prepare/fingerprint.h"

namespace study {
namespace {

constexpr std::size_t kDigits = 64;

std::string kept(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::string text;
  stream >> text;
  const bool isWhole =
      text.size() == kDigits && text.find_first_not_of("0123456789abcdef") == std::string::npos;
  return isWhole ? text : "";
}

}  // namespace

std::string inputChecksum(const std::filesystem::path& file, const std::filesystem::path& workFolder) {
  const std::filesystem::path folder = workFolder / "checksums";
  const std::filesystem::path place = folder / Fingerprint().addFile("input", file).hex();
  std::string checksum = kept(place);
  if (!checksum.empty()) return checksum;
  checksum = formats::sha256Of(file.string());
  std::filesystem::create_directories(folder);
  formats::writeTextFile(place.string(), checksum + "\n", formats::Durability::kCached);
  return checksum;
}

}  // namespace study
