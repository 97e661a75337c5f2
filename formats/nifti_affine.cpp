#include "formats/nifti_affine.h"

#include <nifti2_io.h>

#include <algorithm>
#include <cmath>

namespace formats {
namespace {

bool isUsable(const Affine& affine) {
  return std::all_of(affine.m.begin(), affine.m.end(), [](double v) { return std::isfinite(v); }) &&
         std::isnormal(determinant(affine));
}

Affine sformOf(const NiftiTransforms& t) {
  Affine affine;
  std::copy(t.sform.begin(), t.sform.end(), affine.m.begin());
  return affine;
}

double usableSize(double size) {
  return std::isfinite(size) && size != 0 ? std::abs(size) : 1;
}

Affine qformOf(const NiftiTransforms& t) {
  const auto& q = t.quaternion;
  const nifti_dmat44 matrix =
      nifti_quatern_to_dmat44(q[0], q[1], q[2], q[3], q[4], q[5], usableSize(t.pixdim[1]),
                              usableSize(t.pixdim[2]), usableSize(t.pixdim[3]), t.pixdim[0]);
  Affine affine;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) affine.at(row, column) = matrix.m[row][column];
  }
  return affine;
}

Affine sizesOnly(const NiftiTransforms& t) {
  Affine affine;
  for (int axis = 0; axis < 3; ++axis)
    affine.at(axis, axis) = usableSize(t.pixdim[static_cast<unsigned>(axis) + 1]);
  return affine;
}

}  // namespace

bool chooseAffine(const NiftiTransforms& transforms, ImageHeader& header) {
  header.qform = qformOf(transforms);
  header.qformCode = transforms.qformCode > 0 && isUsable(header.qform) ? transforms.qformCode : 0;
  header.affine = sformOf(transforms);
  header.sformCode = transforms.sformCode > 0 && isUsable(header.affine) ? transforms.sformCode : 0;
  if (header.sformCode == 0) header.affine = header.qformCode > 0 ? header.qform : sizesOnly(transforms);
  return isUsable(header.affine);
}

NiftiTransforms transformsOf(const ImageHeader& header) {
  NiftiTransforms t;
  t.sformCode = header.sformCode;
  t.qformCode = header.qformCode;
  std::copy_n(header.affine.m.begin(), t.sform.size(), t.sform.begin());
  const Affine& rigid = header.qformCode > 0 ? header.qform : header.affine;
  nifti_dmat44 matrix{};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) matrix.m[row][column] = rigid.at(row, column);
  }
  auto& q = t.quaternion;
  auto& p = t.pixdim;
  nifti_dmat44_to_quatern(matrix, &q[0], &q[1], &q[2], &q[3], &q[4], &q[5], &p[1], &p[2], &p[3], &p[0]);
  return t;
}

}  // namespace formats
