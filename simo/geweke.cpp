#include "simo/geweke.h"

#include <cmath>

#include "simo/cholesky.h"

namespace simo {
namespace {

// The determinant of the joint covariance's block that belongs to one restricted model, whose
// factor serves as work storage.
template <class T>
bool blockDeterminant(const Matrix<T>& jointCov, int first, FosOrth<T>& restricted, T& det) {
  if (!cholDcmpP(jointCov, first, first + restricted.n, restricted.factor)) return false;
  det = squaredDiagonalProduct(restricted.factor);
  return true;
}

template <class T>
bool errorDeterminant(FosOrth<T>& model, T& det) {
  return detPosDef(model.errCov, model.factor, det);
}

}  // namespace

template <class T>
bool gewekeX2Y(const FosAvg<T>& avg, int ix, int iy, FosOrth<T>& full, FosOrth<T>& restrX, FosOrth<T>& restrY,
               T& fx2y, T& fy2x, T& fxy) {
  if (!fitModel(avg, 0, full) || !fitModel(avg, ix, restrX) || !fitModel(avg, iy, restrY)) return false;

  T joint, aloneX, aloneY;
  if (!errorDeterminant(full, joint) || !errorDeterminant(restrX, aloneX) ||
      !errorDeterminant(restrY, aloneY))
    return false;

  T jointX, jointY;
  if (!blockDeterminant(full.errCov, ix, restrX, jointX) ||
      !blockDeterminant(full.errCov, iy, restrY, jointY))
    return false;

  fx2y = std::log(aloneY / jointY);
  fy2x = std::log(aloneX / jointX);
  fxy = std::log(jointX * jointY / joint);
  return true;
}

template bool gewekeX2Y<float>(const FosAvg<float>&, int, int, FosOrth<float>&, FosOrth<float>&,
                               FosOrth<float>&, float&, float&, float&);

}  // namespace simo
