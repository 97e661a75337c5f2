// Maps in the form in which a page gets them (packed_arrays.h), one value per cell.
// Values are 16-bit multiples of a scale in a draft, -32768 standing for none, and 32-bit floats, the very
// ones, otherwise; p as -10 log10 in a byte, 255 for unknown; codes of directions in a byte.
#ifndef TAVMAP_WORKBENCH_MAPS_REPLY_H
#define TAVMAP_WORKBENCH_MAPS_REPLY_H

#include <cstdint>
#include <string>
#include <vector>

#include "live/live_maps.h"

namespace workbench {

struct MapsToSend {
  const live::LiveMaps& maps;
  std::vector<std::uint8_t> directions;  // per cell; empty: not tested
  std::int64_t sequence = 0;             // of the page
  double elapsedMs = 0;
  std::vector<std::string> warnings;
};

[[nodiscard]] std::string encodedMaps(const MapsToSend& sent);

}  // namespace workbench

#endif
