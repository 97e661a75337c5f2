// The mean time course of a region in a VTC.
#ifndef TAVMAP_IO_TCUTILS_H
#define TAVMAP_IO_TCUTILS_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "io/cnvtcfile.h"
#include "io/crdutils.h"
#include "simo/smatrix.h"

// The weighted average: every cell's time course counts once per region voxel in it.
template <typename T>
struct tc_accum_avgW {
  static void add(T* sums, const float* values, std::int32_t nrOfVolumes, std::int32_t weight) {
    for (std::int32_t t = 0; t < nrOfVolumes; ++t) sums[t] += static_cast<T>(weight) * values[t];
  }
  // The product is taken in integers, then converted.
  static void add(T* sums, const std::uint16_t* values, std::int32_t nrOfVolumes, std::int32_t weight) {
    for (std::int32_t t = 0; t < nrOfVolumes; ++t)
      sums[t] += static_cast<T>(std::int64_t{values[t]} * weight);
  }
  static void finish(T* sums, std::int32_t nrOfVolumes, std::int32_t nrOfVoxels) {
    for (std::int32_t t = 0; t < nrOfVolumes; ++t) sums[t] /= static_cast<T>(nrOfVoxels);
  }
};

// What an extraction met. The first two mean that it failed.
struct VoiTcReport {
  bool allOutside = false;     // the region has voxels, and none lies inside the VTC's box
  bool truncated = false;      // the file ends inside a time course
  std::int32_t nrOutside = 0;  // voxels left out of the average
};

namespace tcutils_detail {

// Adds the time course of one cell; false when the file ends before it does.
template <typename T, typename Accumulation, typename Value>
bool addCell(std::FILE* file, const VTC_Header& header, const voicrd& cell, Value* buffer, T* sums) {
  const auto voxel = static_cast<std::int64_t>(gridOf(header).index(cell.x, cell.y, cell.z));
  const std::int64_t offset = header.dataOffset + voxel * header.nrOfVolumes * std::int64_t{sizeof(Value)};
  const auto wanted = static_cast<std::size_t>(header.nrOfVolumes);
  if (std::fseek(file, static_cast<long>(offset), SEEK_SET) != 0) return false;
  if (std::fread(buffer, sizeof(Value), wanted, file) != wanted) return false;
  Accumulation::add(sums, buffer, header.nrOfVolumes, cell.n);
  return true;
}

template <typename T, typename Accumulation, typename Value>
bool addCells(std::FILE* file, const VTC_Header& header, const std::vector<voicrd>& cells, T* sums) {
  const auto buffer = std::make_unique<Value[]>(static_cast<std::size_t>(header.nrOfVolumes));
  for (const voicrd& cell : cells) {
    if (!addCell<T, Accumulation>(file, header, cell, buffer.get(), sums)) return false;
  }
  return true;
}

}  // namespace tcutils_detail

// Writes the mean time course of the region's voxels into the first nrOfVolumes elements of row
// `row` of `out` and reports what it met.
//
// `file` is the open VTC with this header, whose geometry must be usable; on return it stands at
// the first data value. `voxels` holds 3 x nVoxels coordinates; talCoords non-zero: Talairach.
// `workBuffer` holds at least 3 x nVoxels integers and is overwritten. Voxels outside the VTC's box
// are left out, also of the divisor. Each distinct cell costs one seek and one read. False when
// none of the voxels lies inside the box or the file is too short. No voxels at all give a row of
// NaN.
template <typename T, typename Accumulation>
[[nodiscard]] bool getVOITcFromVTC(std::FILE* file, const VTC_Header& header, const std::int32_t* voxels,
                                   std::int32_t nVoxels, std::int32_t talCoords, simo::Matrix<T>& out,
                                   std::int32_t row, std::int32_t* workBuffer, VoiTcReport& report) {
  toAnatomicalCoordinates(voxels, nVoxels, talCoords != 0, workBuffer);
  const VoiCells found = cellsOfVoxels(header, workBuffer, nVoxels);
  T* const sums = &out[row][out.colBase];
  std::fill_n(sums, header.nrOfVolumes, T{0});
  using namespace tcutils_detail;
  const bool complete = header.dataType == kVtcFloatData
                            ? addCells<T, Accumulation, float>(file, header, found.cells, sums)
                            : addCells<T, Accumulation, std::uint16_t>(file, header, found.cells, sums);
  const std::int32_t nrInside = nVoxels - found.nrOutside;
  Accumulation::finish(sums, header.nrOfVolumes, nrInside);
  report = {nVoxels > 0 && nrInside == 0, !complete, found.nrOutside};
  return std::fseek(file, header.dataOffset, SEEK_SET) == 0 && !report.allOutside && !report.truncated;
}

// The same without a report.
template <typename T, typename Accumulation>
[[nodiscard]] bool getVOITcFromVTC(std::FILE* file, const VTC_Header& header, const std::int32_t* voxels,
                                   std::int32_t nVoxels, std::int32_t talCoords, simo::Matrix<T>& out,
                                   std::int32_t row, std::int32_t* workBuffer) {
  VoiTcReport unused;
  return getVOITcFromVTC<T, Accumulation>(file, header, voxels, nVoxels, talCoords, out, row, workBuffer,
                                          unused);
}

#endif
