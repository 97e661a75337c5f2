// Slow cosines to regress: a high-pass filter as SPM and fMRIPrep make it.
#ifndef TAVMAP_PREPARE_COSINES_H
#define TAVMAP_PREPARE_COSINES_H

#include <string>
#include <vector>

namespace study {

// Columns k = 1, 2, ... of the discrete cosine transform (DCT-II), each of unit length: all that are slower
// than the period, floor(2 * volumes * TR / period), at most volumes - 1. None for a period of 0.
[[nodiscard]] std::vector<std::vector<double>> highPassCosines(int volumes, double trSeconds,
                                                               double periodSeconds);

// "high_pass00": how records name the k-th column, counted from 0.
[[nodiscard]] std::string highPassName(std::size_t column);

}  // namespace study

#endif
