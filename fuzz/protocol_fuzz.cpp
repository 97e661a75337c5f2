// Events and volume tables of any text: a protocol or a FileError.
#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/file_error.h"
#include "formats/protocol.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto protocol = formats::parseProtocol({reinterpret_cast<const char*>(data), size}, "input", 2000);
    for (const auto& condition : protocol.conditions) {
      for (const auto& interval : condition.intervals) {
        if (interval.start < 0 || interval.end < interval.start) __builtin_trap();
      }
    }
  } catch (const formats::FileError&) {
  }
  return 0;
}
