// A time series as stored in its file, volume after volume, of which columns of voxels are wanted:
// in memory, or in a nameless file when it is larger than a given budget.
#ifndef TAVMAP_FORMATS_SERIES_STORE_H
#define TAVMAP_FORMATS_SERIES_STORE_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "formats/nifti_stream.h"

namespace formats {

// Neighbouring voxels of all volumes: the values of volume t start at data + t * volumeStride.
struct SeriesSlab {
  const char* data;
  std::size_t volumeStride;  // bytes
};

class SeriesStore {
 public:
  // Takes the `volumes` volumes that the stream stands before. `nearPath` names a file whose
  // folder takes the nameless file. Throws FileError.
  SeriesStore(NiftiStream& stream, int volumes, std::size_t memoryBytes, const std::string& nearPath);
  ~SeriesStore();
  SeriesStore(const SeriesStore&) = delete;
  SeriesStore& operator=(const SeriesStore&) = delete;

  // Voxels that one slab may have so that it fits its share of the memory; at least 1.
  [[nodiscard]] std::size_t slabVoxels() const { return slabVoxels_; }
  // One whole volume, as stored. Precondition: `to` has room for it.
  void copyVolume(std::size_t volume, char* to);
  // Valid until the next call. Precondition: count <= slabVoxels().
  [[nodiscard]] SeriesSlab slab(std::size_t firstVoxel, std::size_t count);

 private:
  void allocate(std::size_t bytes);
  void spill(NiftiStream& stream, const std::string& nearPath);
  void writeToFile(const std::vector<char>& bytes);
  void readFromFile(char* to, std::size_t bytes, std::size_t offset);
  [[noreturn]] void fail(const char* doing) const;

  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
  };

  std::size_t volumes_, volumeBytes_, valueBytes_;
  std::size_t slabVoxels_;
  std::unique_ptr<char[], Free> bytes_;  // the whole series, or one slab of it
  std::string path_;
  int fd_ = -1;
};

}  // namespace formats

#endif
