// Sidecars of VTC files, of any text: a sidecar or a FileError. What was read is written and read again
// the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "formats/file_error.h"
#include "formats/vtc_sidecar.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto sidecar = formats::parseVtcSidecar({reinterpret_cast<const char*>(data), size}, "input");
    const std::string text = formats::encodeVtcSidecar(sidecar);
    if (formats::encodeVtcSidecar(formats::parseVtcSidecar(text, "again")) != text) std::abort();
  } catch (const formats::FileError& error) {
    if (error.path() == "again") std::abort();
  }
  return 0;
}
