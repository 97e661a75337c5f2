// A time series on its way from volume-major to time-contiguous order: taken volume by volume,
// given back as chunks of neighbouring voxels with all their volumes.
//
// It stays in memory when it fits a given budget. Otherwise it waits in the output file itself: the
// volumes of a chunk go to the place where the time courses of the same chunk will be written,
//
//   chunk:      0                    1                    2
//   waiting   [ t0 t1 t2 ... |    ][ t0 t1 t2 ... |    ][ ...      (values of the chunk's voxels at t)
//   written   [ v0 v1 v2 ...      ][ v5 v6 v7 ...      ][ ...      (courses of its voxels)
//
// which needs no second file, and no second page of the system's file cache for any value.
#ifndef TAVMAP_FORMATS_SERIES_STORE_H
#define TAVMAP_FORMATS_SERIES_STORE_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

#include "formats/voxel_runs.h"
#include "formats/vtc_writer.h"

namespace formats {

// Neighbouring voxels of all volumes: the values of volume t start at data + t * volumeStride.
struct SeriesSlab {
  const char* data;
  std::size_t volumeStride;  // bytes
};

struct SeriesChunk {
  std::size_t rank, count;  // voxels of the mask, see VoxelRuns
  SeriesSlab slab;
  std::size_t waitedUpTo;  // bytes of the courses of all voxels: until here the file is not empty
};

class SeriesStore {
 public:
  // `volumes` volumes of values of `valueBytes` each for the voxels of `kept`, which become courses
  // of values of `courseValueBytes` in `writer`. Both must live as long.
  // Precondition: volumes >= 2, 1 <= valueBytes <= courseValueBytes.
  SeriesStore(const VoxelRuns& kept, std::size_t volumes, std::size_t valueBytes,
              std::size_t courseValueBytes, std::size_t memoryBytes, VtcWriter& writer);

  // The place for the values of the next volume, kept.count() of them. Throws FileError.
  [[nodiscard]] char* nextVolume();
  // To be called when the last volume is in its place. Throws FileError.
  void finish();

  [[nodiscard]] std::size_t chunks() const { return chunkStart_.size(); }
  // Valid until the next call. Precondition: courses of earlier chunks only have been written.
  [[nodiscard]] SeriesChunk chunk(std::size_t index);

 private:
  [[nodiscard]] bool waitsInFile() const { return rows_ < volumes_; }
  void planChunks(std::size_t courseBytes);
  void flushRows();
  void allocate(std::size_t bytes);

  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
  };

  const VoxelRuns& kept_;
  std::size_t volumes_, valueBytes_;
  VtcWriter& writer_;
  std::size_t rowBytes_;                  // of one volume
  std::size_t rows_;                      // volumes in memory
  std::size_t filled_ = 0, flushed_ = 0;  // rows of them; volumes in the file
  std::size_t chunkVoxels_;
  std::vector<std::size_t> chunkStart_;  // bytes of the courses of all voxels before it
  std::unique_ptr<char[], Free> bytes_;
  std::vector<char> chunk_;  // read back
};

}  // namespace formats

#endif
