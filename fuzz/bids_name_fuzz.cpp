// File names of any text: entities, or an empty suffix. A name that was understood is written in the
// standard's order and understood again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "bids/bids_names.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto name = study::parseBidsName({reinterpret_cast<const char*>(data), size});
  if (name.suffix.empty()) return 0;
  const std::string written = study::formatBidsName(name);
  const auto again = study::parseBidsName(written);
  if (again.suffix != name.suffix || again.extension != name.extension) std::abort();
  if (study::formatBidsName(again) != written) std::abort();
  for (const auto& [key, value] : name.entities) {
    if (again.get(key) != name.get(key)) std::abort();
  }
  return 0;
}
