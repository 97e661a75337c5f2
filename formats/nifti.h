// Reading NIfTI-1 and NIfTI-2 images (.nii, .nii.gz; either byte order) into memory.
// Streaming of time series is in nifti_stream.h, writing in nifti_writer.h.
//
// Every function throws FileError for a file that is missing, truncated, damaged, of another
// kind or of an unsupported data type (complex, colours), with the reason in words.
#ifndef TAVMAP_FORMATS_NIFTI_H
#define TAVMAP_FORMATS_NIFTI_H

#include <string>

#include "formats/image.h"

namespace formats {

[[nodiscard]] ImageHeader readImageHeader(const std::string& path);

// An image of one volume, such as an anatomy or a mask; a series is refused.
[[nodiscard]] Image3D readImage(const std::string& path);

// One volume (from 0) of an image or series.
[[nodiscard]] Image3D readVolume(const std::string& path, int volume);

// An image of one volume whose values are whole numbers of at most 2^31 - 1, stored in any type.
[[nodiscard]] LabelImage readLabelImage(const std::string& path);

}  // namespace formats

#endif
