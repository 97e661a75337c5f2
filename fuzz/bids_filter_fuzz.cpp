// BIDS filter files of any text: labels by entity, or an InputError.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "bids/bids_layout.h"
#include "request/problem.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto entities = study::parseBidsFilter({reinterpret_cast<const char*>(data), size}, "input");
    for (const char* word : {"suffix", "datatype", "extension", "session", "subject"}) {
      if (entities.count(word) > 0) std::abort();
    }
  } catch (const study::InputError&) {
  }
  return 0;
}
