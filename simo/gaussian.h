// Standard normal random numbers.
#ifndef TAVMAP_SIMO_GAUSSIAN_H
#define TAVMAP_SIMO_GAUSSIAN_H

#include "simo/matrix.h"
#include "simo/random_stream.h"

namespace simo {

// Seeds the generator with timeBase() + seed and fills m[r][c], rowFirst <= r < rowEnd and
// colFirst <= c < colEnd, row after row with independent standard normal numbers. Seeds also when
// there is nothing to fill. A row takes its numbers in pairs; an odd last column takes the first of
// one more pair. Allocates nothing. Instantiated for float.
//
// The rounding is part of the contract, since surrogates must repeat from machine to machine: per
// pair, the first uniform number and the radius factor are rounded to single precision, the second
// uniform number, the squared radius and the logarithm are in double.
//
// Polar method: Marsaglia & Bray 1964, SIAM Review 6, 260-264, doi:10.1137/1006063.
template <class T>
void randn(Matrix<T>& m, int rowFirst, int rowEnd, int colFirst, int colEnd, unsigned int seed);

// The same from the caller's stream, which starts anew with `start`.
template <class T>
void randn(Matrix<T>& m, int rowFirst, int rowEnd, int colFirst, int colEnd, RandomStream& random,
           unsigned int start);

}  // namespace simo

#endif
