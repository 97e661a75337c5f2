// JSON sidecars of images, of any text: what they say or an InputError.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "prepare/image_sidecar.h"
#include "request/problem.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto sidecar = study::parseImageSidecar({reinterpret_cast<const char*>(data), size}, "input.json");
    if (sidecar.trSeconds && !(*sidecar.trSeconds > 0)) std::abort();
    const double seconds = study::repetitionTime("run", 0, 2.0, sidecar);
    if (!(seconds > 0)) std::abort();
  } catch (const study::InputError&) {
  }
  return 0;
}
