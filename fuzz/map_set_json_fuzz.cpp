// Header extensions of map sets: any bytes give a set or a FileError.
#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/file_error.h"
#include "formats/map_set_json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto set = formats::mapSetFromJson({reinterpret_cast<const char*>(data), size}, "input");
    (void)set.grid();
  } catch (const formats::FileError&) {
  }
  return 0;
}
