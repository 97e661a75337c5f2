#include "formats/checksum.h"

#include <nettle/sha2.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <vector>

#include "formats/file_error.h"

namespace formats {
namespace {

std::string hexOf(const std::array<std::uint8_t, SHA256_DIGEST_SIZE>& digest) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

}  // namespace

std::string sha256Of(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw FileError(path, "it cannot be opened", "Check the name and the permissions");
  sha256_ctx context;
  sha256_init(&context);
  std::vector<char> block(std::size_t{1} << 20U);
  while (stream.read(block.data(), static_cast<std::streamsize>(block.size())) || stream.gcount() > 0) {
    sha256_update(&context, static_cast<std::size_t>(stream.gcount()),
                  reinterpret_cast<const std::uint8_t*>(block.data()));
  }
  if (stream.bad()) throw FileError(path, "it cannot be read", "Check the disk", Fault::kSystem);
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), digest.data());
  return hexOf(digest);
}

}  // namespace formats
