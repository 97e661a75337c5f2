// Truth files of any text: a truth that begins with its reference, or a FileError.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "formats/file_error.h"
#include "simulation/truth.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto truth = simulation::parseTruth({reinterpret_cast<const char*>(data), size}, "input");
    if (truth.regions.empty()) std::abort();
  } catch (const formats::FileError&) {
  }
  return 0;
}
