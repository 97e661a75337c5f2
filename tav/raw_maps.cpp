#include "tav/raw_maps.h"

namespace tav {

rawTAVMaps::rawTAVMaps(unsigned nx, unsigned ny, unsigned nz)
    : planes_{Array3D<float>(nz, ny, nx), Array3D<float>(nz, ny, nx), Array3D<float>(nz, ny, nx)} {}

float* rawTAVMaps::values(int measure) {
  return plane(measure).elements();
}

const float* rawTAVMaps::values(int measure) const {
  return plane(measure).elements();
}

}  // namespace tav
