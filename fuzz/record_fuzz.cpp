// Records of results: any bytes give a record or a FileError, and what was read is written and read
// again the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "formats/file_error.h"
#include "results/record_json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto record = study::recordFromText({reinterpret_cast<const char*>(data), size}, "input");
    const std::string text = study::recordText(record);
    if (study::recordText(study::recordFromText(text, "again")) != text) std::abort();
  } catch (const formats::FileError& error) {
    if (error.path() == "again") std::abort();
  }
  return 0;
}
