// The image model: what a NIfTI header says, and three-dimensional images in memory.
#ifndef TAVMAP_FORMATS_IMAGE_H
#define TAVMAP_FORMATS_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/affine.h"
#include "io/grid_size.h"

namespace formats {

using io::GridSize;

// Data types by their NIfTI codes; no others are read.
enum class DataType : std::int16_t {
  kUint8 = 2,
  kInt16 = 4,
  kInt32 = 8,
  kFloat32 = 16,
  kFloat64 = 64,
  kInt8 = 256,
  kUint16 = 512,
  kUint32 = 768,
  kInt64 = 1024,
  kUint64 = 1280,
};
[[nodiscard]] const char* nameOf(DataType type);  // "int16"
[[nodiscard]] std::size_t bytesOf(DataType type);

struct HeaderExtension {
  int code = 0;  // 6: a comment
  std::string bytes;
};

inline constexpr int kLabelIntent = 1002;  // viewers paint such an image with one colour per label

struct ImageHeader {
  GridSize size;
  int volumes = 1;
  bool series = false;  // has a fourth dimension, be it of one volume
  DataType dataType = DataType::kFloat32;
  double slope = 1, intercept = 0;   // value = slope * stored + intercept
  Affine affine;                     // sform if coded, else qform, else voxel sizes from (0, 0, 0)
  Affine qform;                      // meaningful when qformCode > 0
  int sformCode = 0, qformCode = 0;  // NIfTI codes; 0: not given
  double trMs = 0;                   // milliseconds; 0: not given
  int intentCode = 0;
  std::string intentName, description;
  std::vector<HeaderExtension> extensions;
};

// A three-dimensional image, scaled: values[size index].
struct Image3D {
  ImageHeader header;
  std::vector<float> values;

  [[nodiscard]] float at(int x, int y, int z) const;
};

// A label image: the integers of its voxels; 0 is background.
struct LabelImage {
  ImageHeader header;
  std::vector<std::int32_t> labels;
};

// Throws FileError unless both grids have the same size and their affines move no corner apart by
// more than a twentieth of a voxel. The message names both files.
void requireSameGrid(const ImageHeader& a, const std::string& pathA, const ImageHeader& b,
                     const std::string& pathB);

}  // namespace formats

#endif
