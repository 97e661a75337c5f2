// The VTC header reader, and what is computed from a header that it accepts.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "io/cnvtcfile.h"
#include "io/crdutils.h"
#include "io/tcutils.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void fetchSomeVoxels(std::FILE* file, const VTC_Header& header) {
  const std::int32_t voxels[] = {header.xStart,
                                 header.yStart,
                                 header.zStart,
                                 header.xEnd,
                                 header.yEnd,
                                 header.zEnd,
                                 0,
                                 0,
                                 0,
                                 INT32_MAX,
                                 INT32_MIN,
                                 7};
  std::int32_t work[12];
  simo::Matrix<float> course(1, header.nrOfVolumes, 1, 1);
  VoiTcReport report;
  const bool fetched =
      getVOITcFromVTC<float, tc_accum_avgW<float>>(file, header, voxels, 4, 0, course, 1, work, report);
  require(report.nrOutside >= 1 && report.nrOutside <= 4);
  require(!fetched || (!report.allOutside && !report.truncated));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::FILE* const file = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
  require(file != nullptr);
  VTC_Header header{};
  if (readVTCHeader(file, header)) {
    require(header.dataOffset >= 0 && static_cast<std::size_t>(header.dataOffset) <= size);
    require(std::memchr(header.sourceFileName, 0, sizeof header.sourceFileName) != nullptr);
    require(std::memchr(header.protocolName, 0, sizeof header.protocolName) != nullptr);
    if (hasUsableGeometry(header)) {
      require(sliceValues(header) > 0);
      fetchSomeVoxels(file, header);
    }
  }
  std::fclose(file);
  return 0;
}
