// Evidence behind maps: any bytes give evidence or a FileError, and what was read is written and read again
// the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "formats/file_error.h"
#include "results/evidence_json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto evidence = study::evidenceFromText({reinterpret_cast<const char*>(data), size}, "input");
    const std::string text = study::evidenceText(evidence);
    if (study::evidenceText(study::evidenceFromText(text, "again")) != text) std::abort();
  } catch (const formats::FileError& error) {
    if (error.path() == "again") std::abort();
  }
  return 0;
}
