// The whole of simo.
#ifndef TAVMAP_SIMO_SMATRIX_H
#define TAVMAP_SIMO_SMATRIX_H

#include "simo/ar_coefficients.h"
#include "simo/array3d.h"
#include "simo/cholesky.h"
#include "simo/detrend.h"
#include "simo/gaussian.h"
#include "simo/geweke.h"
#include "simo/lag_averages.h"
#include "simo/lag_pair_form.h"
#include "simo/lagged_moments.h"
#include "simo/lower_triangular.h"
#include "simo/matrix.h"
#include "simo/orthogonal_search.h"
#include "simo/pair_fit.h"
#include "simo/randomness.h"
#include "simo/varsim.h"
#include "simo/vector.h"

#endif
