// What a run keeps of its data: every VTC file once, open, with a piece of a slice in memory; and every
// reference's time course in every source VTC.
#ifndef TAVMAP_TAV_VTC_CACHE_H
#define TAVMAP_TAV_VTC_CACHE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "io/vtc_header.h"
#include "simo/smatrix.h"
#include "tav/loaded_vtc.h"
#include "tav/voxel_path.h"

namespace tav {

// One open VTC file. Owns its stream and its buffer, which holds whole time courses: as many as
// stay in the processor's cache until they are used, and never more than a slice. Or a file that is in
// memory: then there is neither stream nor buffer.
struct VtcFile {
  // Takes over `stream`, which stands behind the header.
  VtcFile(std::string path, const VTC_Header& fileHeader, std::FILE* stream);
  VtcFile(std::string path, std::shared_ptr<const LoadedVtc> vtc);
  ~VtcFile();
  VtcFile(const VtcFile&) = delete;
  VtcFile& operator=(const VtcFile&) = delete;

  [[nodiscard]] bool isFloat() const { return header.dataType == kVtcFloatData; }
  // Back to the first data value.
  void rewind();
  // Voxels that the buffer holds, at least 1.
  [[nodiscard]] std::size_t voxelsPerRead() const { return voxelsPerRead_; }
  // Reads the time courses of the next voxels, at most voxelsPerRead(), into the buffer. False when
  // the file does not hold them all.
  [[nodiscard]] bool readVoxels(std::size_t nrOfVoxels);
  // Those that were read last.
  [[nodiscard]] VoxelData piece() const;
  // Those from a voxel on, of a file in memory.
  [[nodiscard]] VoxelData dataAt(std::size_t voxel) const;
  // Whether the file holds the time courses of its first voxels. Leaves the stream anywhere.
  [[nodiscard]] bool holdsVoxels(std::size_t nrOfVoxels) const;

  std::string name;  // as the request gives it
  VTC_Header header;
  std::FILE* fp;                                // null: in memory
  std::shared_ptr<const LoadedVtc> loaded;      // null: on disk
  std::int32_t sliceSize;                       // values in one z-slice
  std::unique_ptr<float[]> floatSlice;          // float data; else null
  std::unique_ptr<std::uint16_t[]> shortSlice;  // 16-bit data; else null

 private:
  std::size_t voxelsPerRead_;
  // Values that the buffer holds: those of voxelsPerRead_ voxels, or what the file has when that is
  // less, so that a header that promises more than its file costs no memory.
  std::size_t bufferSize_;
  std::size_t nextVoxel_ = 0, pieceVoxel_ = 0;  // of a file in memory
};

// Says which file cannot be read, in the order of the list: `failed`, or one before it that ends within its
// first `nrOfVoxels` voxels, too. With the voxels up to the end of a slice, the answer does not depend on how
// the slice is cut into pieces.
void reportUnreadable(const std::vector<VtcFile*>& files, const VtcFile* failed, std::size_t nrOfVoxels,
                      std::ostream& errors);

// The time course of one reference in one source VTC, with what is derived from it alone.
// All columns are volumes, from 1.
struct VoiTc {
  VoiTc(std::string voi, std::string vtc, int nrOfVolumes, int order, int nrOfSurrogates);

  std::string voiName;
  std::string vtcName;
  simo::Matrix<float> tc;                     // 1 x volumes, row 1
  simo::Matrix<float> noiseCov;               // 1 x 1, 0-based: innovation variance
  simo::Vector<simo::Matrix<float>> arCoefs;  // lags 1 ... order, each 1 x 1, 0-based
  simo::Matrix<float> surrogates;             // surrogates x volumes, rows from 1; zeros at first
};

}  // namespace tav

#endif
