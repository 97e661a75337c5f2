// The header of a volume time course (VTC): what the file reader fills, and what the host hands
// out for the VTC linked to the current anatomy. One record serves both.
#ifndef TAVMAP_IO_VTC_HEADER_H
#define TAVMAP_IO_VTC_HEADER_H

#include <cstddef>
#include <cstdint>

inline constexpr int kVtcNameBytes = 261;  // 260 characters and the terminating zero
inline constexpr std::int32_t kVtcShortData = 1, kVtcFloatData = 2;

struct VTC_Header {
  // Byte position of the first data value. -1 in a header from the host: no VTC is linked.
  std::int32_t dataOffset;
  std::int32_t nrOfVolumes;
  std::int32_t unused1;  // set to 0 by the reader
  std::int32_t unused2;
  std::int32_t tr;  // repetition time in milliseconds, rounded half up
  // Bounding box in anatomical coordinates; the end is exclusive.
  std::int32_t xStart, xEnd, yStart, yEnd, zStart, zEnd;
  std::int32_t resolution;  // edge of one VTC voxel, in anatomical coordinates
  std::int32_t dataType;    // kVtcFloatData: 32-bit floats; anything else: 16-bit unsigned
  std::int32_t spaceCode;   // the second of the two one-byte codes of versions 3 and up
  char hostOnly[264];       // the host's business
  std::int32_t nrOfLinkedProtocols;
  char protocolName[kVtcNameBytes];
  char sourceFileName[kVtcNameBytes];
};
static_assert(offsetof(VTC_Header, dataOffset) == 0);
static_assert(offsetof(VTC_Header, tr) == 16);
static_assert(offsetof(VTC_Header, protocolName) == 324);

#endif
