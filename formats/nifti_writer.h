// Writing NIfTI-1 images, whole or not at all; compressed when the name ends in .gz.
#ifndef TAVMAP_FORMATS_NIFTI_WRITER_H
#define TAVMAP_FORMATS_NIFTI_WRITER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "formats/atomic_file.h"
#include "formats/gzip_writer.h"
#include "formats/image.h"

namespace formats {

// Writes header, then values in file order, then commit. Throws FileError; also for an extent
// above 32,767, and for values that the type cannot hold.
class NiftiWriter {
 public:
  // The type of `header` is the stored one: uint8, int16, uint16, int32 or float32. Slope and
  // intercept are written as 1 and 0: values are stored as given.
  NiftiWriter(const std::string& path, ImageHeader header, Durability durability = Durability::kSynced);

  // Whole-number types: rounded half to even; NaN or a value out of range is refused.
  void writeValues(const float* values, std::size_t count);
  void writeValues(const std::int32_t* values, std::size_t count);
  // Values of the stored type itself.
  void writeStored(const void* values, std::size_t count);

  // Throws FileError when the number of values is not the header's.
  void commit();

 private:
  template <typename In>
  void convertAndWrite(const In* values, std::size_t count);
  void writeBytes(const void* data, std::size_t bytes);

  ImageHeader header_;
  AtomicFile file_;
  std::unique_ptr<GzipWriter> gzip_;
  std::size_t valuesLeft_;
};

void writeImage(const std::string& path, const Image3D& image);
// With the intent code of label images.
void writeLabelImage(const std::string& path, const LabelImage& image);

}  // namespace formats

#endif
