// A NIfTI image as a stream of stored values, in file order: x fastest, then y, z and volume.
#ifndef TAVMAP_FORMATS_NIFTI_STREAM_H
#define TAVMAP_FORMATS_NIFTI_STREAM_H

#include <cstddef>
#include <memory>
#include <string>

#include "formats/byte_source.h"
#include "formats/nifti_header.h"

namespace formats {

class NiftiStream {
 public:
  // Reads and checks the header; stands before the first value then. Throws FileError, as all do.
  explicit NiftiStream(const std::string& path);

  [[nodiscard]] const ImageHeader& header() const { return layout_.header; }
  [[nodiscard]] const NiftiLayout& layout() const { return layout_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::size_t volumeBytes() const;

  // The next bytes as stored, in the file's own byte order.
  void readStored(void* data, std::size_t bytes);
  void skip(std::size_t bytes);

  // The next `count` values, scaled.
  void readValues(float* values, std::size_t count);
  void readValues(double* values, std::size_t count);

  // To be called after the last value: a gzip file is then known to be undamaged.
  void finish();

 private:
  void readHeader();
  void requireEnoughData() const;
  template <typename Out>
  void readScaled(Out* values, std::size_t count);

  std::string path_;
  std::unique_ptr<ByteSource> source_;
  NiftiLayout layout_;
};

}  // namespace formats

#endif
