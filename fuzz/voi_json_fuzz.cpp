// VOI lists of any text: a list or a FileError.
#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/file_error.h"
#include "formats/voi_list.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const formats::VoiList list = formats::parseVoiJson({reinterpret_cast<const char*>(data), size}, "input");
    for (const auto& voi : list.vois) {
      if (voi.voxels.empty() || voi.name.empty()) __builtin_trap();
    }
  } catch (const formats::FileError&) {
  }
  return 0;
}
