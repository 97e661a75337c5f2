#include "connectome/matrix_product.h"

#include <cblas.h>

namespace connectome {

void multiplyTransposed(const float* a, std::size_t rowsA, const float* b, std::size_t rowsB,
                        std::size_t length, float* c) {
  // Threads are the caller's: several of the library's would only wait for each other.
  static const bool isAlone = (openblas_set_num_threads(1), true);
  (void)isAlone;
  const auto m = static_cast<blasint>(rowsA), n = static_cast<blasint>(rowsB),
             k = static_cast<blasint>(length);
  cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasTrans, m, n, k, 1.0F, a, k, b, k, 0.0F, c, n);
}

}  // namespace connectome
