// The transforms of a NIfTI header: which of the three ways it uses, and their quaternion form.
#ifndef TAVMAP_FORMATS_NIFTI_AFFINE_H
#define TAVMAP_FORMATS_NIFTI_AFFINE_H

#include <array>

#include "formats/image.h"

namespace formats {

// The fields that describe where voxels lie, widened to double.
struct NiftiTransforms {
  int sformCode = 0, qformCode = 0;
  std::array<double, 12> sform{};      // three rows
  std::array<double, 6> quaternion{};  // b, c, d and the offset
  std::array<double, 4> pixdim{};      // handedness, then voxel sizes
};

// Fills affine, qform and both codes. A coded transform without inverse counts as not given.
// False when what remains has no inverse either.
[[nodiscard]] bool chooseAffine(const NiftiTransforms& transforms, ImageHeader& header);

// The fields for writing: a shear of the qform is lost, since a quaternion cannot hold it.
[[nodiscard]] NiftiTransforms transformsOf(const ImageHeader& header);

}  // namespace formats

#endif
