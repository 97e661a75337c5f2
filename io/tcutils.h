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

// Where time courses come from: course(voxel) is that of a voxel of the grid, null when it cannot be read,
// and valid until the next one is asked for.
template <typename Value>
class CoursesOfFile {
 public:
  CoursesOfFile(std::FILE* file, const VTC_Header& header)
      : file_(file),
        header_(header),
        buffer_(std::make_unique<Value[]>(static_cast<std::size_t>(header.nrOfVolumes))) {}

  const Value* course(std::size_t voxel) {
    const std::int64_t offset = header_.dataOffset + static_cast<std::int64_t>(voxel) * header_.nrOfVolumes *
                                                         std::int64_t{sizeof(Value)};
    const auto wanted = static_cast<std::size_t>(header_.nrOfVolumes);
    if (std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) return nullptr;
    return std::fread(buffer_.get(), sizeof(Value), wanted, file_) == wanted ? buffer_.get() : nullptr;
  }

 private:
  std::FILE* file_;
  const VTC_Header& header_;
  std::unique_ptr<Value[]> buffer_;
};

template <typename Value>
struct CoursesInMemory {
  const Value* first;
  std::size_t nrOfVolumes;
  [[nodiscard]] const Value* course(std::size_t voxel) const { return first + voxel * nrOfVolumes; }
};

// Adds the time courses of all cells; false when one cannot be read.
template <typename T, typename Accumulation, typename Courses>
bool addCells(Courses courses, const VTC_Header& header, const std::vector<voicrd>& cells, T* sums) {
  const io::GridSize grid = gridOf(header);
  for (const voicrd& cell : cells) {
    const auto* const values = courses.course(grid.index(cell.x, cell.y, cell.z));
    if (values == nullptr) return false;
    Accumulation::add(sums, values, header.nrOfVolumes, cell.n);
  }
  return true;
}

// add(cells, sums): addCells() of the data. Otherwise as getVOITcFromVTC().
template <typename T, typename Accumulation, typename Add>
bool averageCells(const VTC_Header& header, const VoiCells& found, std::int32_t nVoxels, T* sums,
                  VoiTcReport& report, Add add) {
  std::fill_n(sums, header.nrOfVolumes, T{0});
  const bool complete = add(found.cells, sums);
  const std::int32_t nrInside = nVoxels - found.nrOutside;
  Accumulation::finish(sums, header.nrOfVolumes, nrInside);
  report = {nVoxels > 0 && nrInside == 0, !complete, found.nrOutside};
  return !report.allOutside && !report.truncated;
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
  using namespace tcutils_detail;
  const auto add = [&](const std::vector<voicrd>& cells, T* sums) {
    return header.dataType == kVtcFloatData
               ? addCells<T, Accumulation>(CoursesOfFile<float>(file, header), header, cells, sums)
               : addCells<T, Accumulation>(CoursesOfFile<std::uint16_t>(file, header), header, cells, sums);
  };
  const bool isAveraged =
      averageCells<T, Accumulation>(header, found, nVoxels, &out[row][out.colBase], report, add);
  return std::fseek(file, header.dataOffset, SEEK_SET) == 0 && isAveraged;
}

// The same from the time courses of all voxels in memory, one behind the other: floats, or for 16-bit data
// shorts; the other pointer is null.
template <typename T, typename Accumulation>
[[nodiscard]] bool getVOITcFromMemory(const float* floats, const std::uint16_t* shorts,
                                      const VTC_Header& header, const std::int32_t* voxels,
                                      std::int32_t nVoxels, std::int32_t talCoords, simo::Matrix<T>& out,
                                      std::int32_t row, std::int32_t* workBuffer, VoiTcReport& report) {
  toAnatomicalCoordinates(voxels, nVoxels, talCoords != 0, workBuffer);
  using namespace tcutils_detail;
  const auto volumes = static_cast<std::size_t>(header.nrOfVolumes);
  const auto add = [&](const std::vector<voicrd>& cells, T* sums) {
    return floats != nullptr
               ? addCells<T, Accumulation>(CoursesInMemory<float>{floats, volumes}, header, cells, sums)
               : addCells<T, Accumulation>(CoursesInMemory<std::uint16_t>{shorts, volumes}, header, cells,
                                           sums);
  };
  return averageCells<T, Accumulation>(header, cellsOfVoxels(header, workBuffer, nVoxels), nVoxels,
                                       &out[row][out.colBase], report, add);
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
