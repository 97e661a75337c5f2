// The loops over places that take most of a test's time, compiled for several kinds of CPU.
#ifndef TAVMAP_INFERENCE_LANES_H
#define TAVMAP_INFERENCE_LANES_H

#include <cstddef>
#include <cstdint>

namespace inference {

// Places are taken by so many at once. Arrays here hold whole vectors of them. Every CPU computes the same
// bits: products and sums are rounded one by one.
inline constexpr std::size_t kLanes = 16;

// out[shuffle][lane] = sum over rows of weights[shuffle][row] * data[vector][row][lane], for `vectors`
// vectors; the outs of one shuffle are `stride` floats behind those of the one before.
void correlateLanes(const float* data, std::size_t vectors, std::size_t rows, const float* weights,
                    std::size_t shuffles, float* out, std::size_t stride);

// squares[i] += values[i]^2.
void addSquares(const float* values, std::size_t n, float* squares);
// values[i] /= sqrt(1 - squares[i]), where what is left is not below 2^-24.
void divideByRest(float* values, const float* squares, std::size_t n);

// For `vectors` vectors: counts[i] += values[i] reaches observed[i]; largest[lane] becomes the maximum of its
// lane. Magnitudes are compared when `isTwoSided`.
void tallyLanes(const float* values, const float* observed, std::size_t vectors, bool isTwoSided,
                std::int32_t* counts, float* largest);

// Z of correlations in place, by a table of ZTable::values().
void zOfCorrelations(float* values, std::size_t n, const float* table);

// to[i] += weight * from[i].
void addScaled(const float* from, float weight, std::size_t n, float* to);

// out[i] = factors[i] * (1 - squares[i] - along[i]^2).
void restVariances(const float* factors, const float* squares, const float* along, std::size_t n, float* out);
// values[i] *= lengths[i] / sqrt(variances[i]); 0 where the variance is not above 0.
void divideByDeviation(float* values, const float* lengths, const float* variances, std::size_t n);

}  // namespace inference

#endif
