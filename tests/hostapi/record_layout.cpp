// Prints every field whose offset or size differs from the host's layout; exit code 1 if any does.
// Compiled for 64 and, where possible, 32 bits.
#include <cstddef>
#include <cstdio>

#include "hostapi/zq_records.h"

namespace {

constexpr bool k32Bit = sizeof(void*) == 4;

struct Check {
  const char* what;
  std::size_t actual;
  std::size_t expected32;
  std::size_t expected64;
};

#define OFFSET(record, field, expected32, expected64) \
  { #record "." #field, offsetof(record, field), expected32, expected64 }
#define SIZE(record, field, expected) \
  { "size of " #record "." #field, sizeof(record::field), expected, expected }

constexpr Check kChecks[] = {
    OFFSET(VOIs_Header, nrOfVOIs, 0, 0),
    OFFSET(VOIs_Header, talCoords, 272, 272),
    OFFSET(VOI_Header, nrOfVoxels, 0, 0),
    OFFSET(VOI_Header, name, 4, 4),
    OFFSET(VTC_Header, dataOffset, 0, 0),
    OFFSET(VTC_Header, nrOfVolumes, 4, 4),
    OFFSET(VTC_Header, tr, 16, 16),
    OFFSET(VTC_Header, xStart, 20, 20),
    OFFSET(VTC_Header, zEnd, 40, 40),
    OFFSET(VTC_Header, resolution, 44, 44),
    OFFSET(VTC_Header, dataType, 48, 48),
    OFFSET(VTC_Header, spaceCode, 52, 52),
    OFFSET(VTC_Header, protocolName, 324, 324),
    SIZE(VTC_Header, protocolName, 261),
    OFFSET(Protocol_Header, nrOfConditions, 0, 0),
    OFFSET(Protocol_Header, timeResolution, 568, 568),
    OFFSET(ProtocolCondition_Header, name, 0, 0),
    SIZE(ProtocolCondition_Header, name, 256),
    OFFSET(ProtocolCondition_Header, nrOfIntervals, 256, 256),
    OFFSET(ProtocolCondition_Header, starts, 260, 264),
    OFFSET(ProtocolCondition_Header, ends, 264, 272),
};

}  // namespace

int main() {
  int differences = 0;
  for (const Check& check : kChecks) {
    const std::size_t expected = k32Bit ? check.expected32 : check.expected64;
    if (check.actual == expected) continue;
    std::printf("%s is %zu, the host expects %zu (%d-bit build)\n", check.what, check.actual, expected,
                k32Bit ? 32 : 64);
    ++differences;
  }
  std::printf("%zu fields checked, %d differences\n", sizeof kChecks / sizeof kChecks[0], differences);
  return differences == 0 ? 0 : 1;
}
