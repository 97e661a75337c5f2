// Records that the host and a plug-in exchange by pointer. The plug-in allocates them, the host
// fills them; texts and arrays behind pointers stay the host's.
//
// The stated byte offsets are those of a build with 4-byte pointers. A 64-bit build keeps every
// offset up to the first pointer and aligns naturally from there on; the static assertions below
// hold in both.
#ifndef TAVMAP_HOSTAPI_ZQ_RECORDS_H
#define TAVMAP_HOSTAPI_ZQ_RECORDS_H

#include <cstddef>
#include <cstdint>

#include "io/vtc_header.h"

// Records of operations that this plug-in binds and never calls: known by name only.
struct AR_VMPs_Header;
struct AR_VMP_Header;
struct DMR_Header;
struct FMR_Header;
struct FMR_ScannerPosition_Header;
struct GLM_Header;
struct MTC_Header;
struct POIs_Header;
struct POI_Header;
struct SCENE_Header;
struct SMPs_Header;
struct SMP_Header;
struct SRF_Header;
struct SSM_Header;
struct VMR_Header;
struct VMR_PastTransformations_Header;
struct VMR_ScannerPosition_Header;

// The current VOI list.
struct VOIs_Header {
  std::int32_t nrOfVOIs;   // 0 when no list is loaded
  char fileName[261];      // the list's file
  char referenceSpace[7];  // text, for display
  std::int32_t talCoords;  // non-zero: voxel coordinates are Talairach millimetres
};
static_assert(offsetof(VOIs_Header, nrOfVOIs) == 0);
static_assert(offsetof(VOIs_Header, talCoords) == 272);

// One VOI. Its coordinates, 3 x nrOfVoxels integers, come as the result of zqGetVOI.
struct VOI_Header {
  std::int32_t nrOfVoxels;
  char name[256];
};
static_assert(offsetof(VOI_Header, nrOfVoxels) == 0);
static_assert(offsetof(VOI_Header, name) == 4);

// The current stimulation protocol.
enum : std::int32_t { kProtocolInVolumes = 1, kProtocolInMilliseconds = 2 };
struct Protocol_Header {
  std::int32_t nrOfConditions;
  char experimentName[264];
  char fileName[300];
  std::int32_t timeResolution;  // kProtocolInVolumes or kProtocolInMilliseconds
};
static_assert(offsetof(Protocol_Header, nrOfConditions) == 0);
static_assert(offsetof(Protocol_Header, timeResolution) == 568);

// One condition of the protocol: inclusive intervals [starts[i], ends[i]] in its time unit,
// volumes counted from 1. Both arrays belong to the host.
struct ProtocolCondition_Header {
  char name[256];
  std::int32_t nrOfIntervals;
  std::int32_t* starts;
  std::int32_t* ends;
};
static_assert(offsetof(ProtocolCondition_Header, name) == 0);
static_assert(offsetof(ProtocolCondition_Header, nrOfIntervals) == 256);
static_assert(offsetof(ProtocolCondition_Header, starts) == (sizeof(void*) == 4 ? 260 : 264));
static_assert(offsetof(ProtocolCondition_Header, ends) == (sizeof(void*) == 4 ? 264 : 272));

// The map set of the current anatomy ("NR maps").
struct NR_VMPs_Header {
  std::int32_t nrOfMaps;
  std::int32_t nrOfFDRThresholds;  // per map
  std::int32_t xStart, xEnd, yStart, yEnd, zStart, zEnd;
  std::int32_t resolution;
  // nrOfFDRThresholds texts of kThresholdNameBytes each, owned by the host.
  char** fdrThresholdNames;
};
inline constexpr int kThresholdNameBytes = 64;

// One map of the set. Its values, [z][y][x] floats owned by the host, come as the result of
// zqGetNRVMPOfCurrentVMR.
struct NR_VMP_Header {
  char name[256];
  std::int32_t kind;  // 101 for directed-influence maps
  float lowerThreshold, upperThreshold;
  // 24-bit colours, red in the lowest byte.
  std::int32_t positiveColorFrom, positiveColorTo;
  std::int32_t negativeColorFrom, negativeColorTo;
  std::int32_t useColors;
  float* fdrThresholds;  // one per threshold of the set, owned by the host
};

#endif
