// Products of many vectors with many. The only file that knows the BLAS library.
#ifndef TAVMAP_CONNECTOME_MATRIX_PRODUCT_H
#define TAVMAP_CONNECTOME_MATRIX_PRODUCT_H

#include <cstddef>

namespace connectome {

// c = a b': rows of a with rows of b, each of `length` values; c has rowsA rows of rowsB values. All
// row-major and dense, none overlapping. On the calling thread alone. The last digits depend on the kind of
// processor, not on the number of threads that call.
void multiplyTransposed(const float* a, std::size_t rowsA, const float* b, std::size_t rowsB,
                        std::size_t length, float* c);

}  // namespace connectome

#endif
