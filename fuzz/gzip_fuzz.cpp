// Gzip files of any bytes: data or a FileError, the same ones however the file comes in pieces.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/file_error.h"
#include "formats/gzip_reader.h"

namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 18U;  // a few bytes can stand for very many

class Memory : public formats::ByteSource {
 public:
  explicit Memory(std::string_view bytes) : bytes_(bytes) {}
  std::size_t read(void* data, std::size_t bytes) override {
    const std::size_t count = std::min(bytes, bytes_.size());
    if (count > 0) std::memcpy(data, bytes_.data(), count);
    bytes_.remove_prefix(count);
    return count;
  }

 private:
  std::string_view bytes_;
};

struct Outcome {
  std::string data, reason;
};

// Reads up to `most` bytes, `step` at a time.
Outcome inflated(std::string_view compressed, std::size_t inputBytes, std::size_t step, std::size_t most) {
  formats::GzipReader reader(std::make_unique<Memory>(compressed), "input", inputBytes);
  Outcome outcome;
  std::vector<char> piece(step);
  try {
    while (outcome.data.size() < most) {
      const std::size_t got = reader.read(piece.data(), std::min(step, most - outcome.data.size()));
      outcome.data.append(piece.data(), got);
      if (got == 0) break;
    }
  } catch (const formats::FileError& error) {
    outcome.reason = error.reason();
  }
  return outcome;
}

// What a failing call had produced is lost; both must fail then, and agree on what came before.
void requireEqual(const Outcome& a, const Outcome& b) {
  const std::size_t shared = std::min(a.data.size(), b.data.size());
  if (a.reason.empty() != b.reason.empty()) std::abort();
  if (a.data.compare(0, shared, b.data, 0, shared) != 0) std::abort();
  if (a.reason.empty() && a.data.size() != b.data.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const Outcome whole = inflated(bytes, std::size_t{1} << 16U, std::size_t{1} << 14U, kMostBytes);
  requireEqual(whole, inflated(bytes, 3, std::size_t{1} << 14U, kMostBytes));
  requireEqual(whole, inflated(bytes, 61, 7, kMostBytes));
  return 0;
}
