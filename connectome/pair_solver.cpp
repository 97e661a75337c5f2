#include "connectome/pair_solver.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace connectome {
namespace {

template <typename T>
constexpr T kLeastPivot = std::is_same_v<T, float> ? T(1e-3) : T(1e-12);

}  // namespace

template <typename T>
PairSolver<T>::PairSolver(int order)
    : order_(static_cast<std::size_t>(order)), gram_(order_ * order_), row_(order_), weights_(order_) {}

template <typename T>
void PairSolver<T>::solve(const PairProducts<T>& products, std::size_t nodes, const Shares<T>& shares) {
  for (std::size_t y = 0; y < nodes; y += kLanes) {
    solveBlock({products.at + y, products.rowStride, products.columnStride},
               {shares.toY + y, shares.toX + y, shares.instantaneous + y});
  }
}

// I - M M' of x, or I - M'M of y: what the pasts leave of each other.
template <typename T>
void PairSolver<T>::fillGram(const PairProducts<T>& products, bool ofX) {
  const std::size_t along = ofX ? products.rowStride : products.columnStride;
  const std::size_t across = ofX ? products.columnStride : products.rowStride;
  for (std::size_t i = 0; i < order_; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      Lanes& sum = gram(i, j);
      sum.fill(i == j ? T(1) : T(0));
      for (std::size_t k = 1; k <= order_; ++k) {
        const T* const a = products.at + (i + 1) * along + k * across;
        const T* const b = products.at + (j + 1) * along + k * across;
        for (std::size_t l = 0; l < kLanes; ++l) sum[l] -= a[l] * b[l];
      }
    }
  }
}

// Cholesky without roots.
template <typename T>
void PairSolver<T>::factor(Lanes& smallest) {
  for (std::size_t i = 0; i < order_; ++i) {
    Lanes& own = gram(i, i);
    for (std::size_t j = 0; j < i; ++j) {
      row_[j] = gram(i, j);
      for (std::size_t k = 0; k < j; ++k)
        for (std::size_t l = 0; l < kLanes; ++l) row_[j][l] -= row_[k][l] * gram(j, k)[l];
      for (std::size_t l = 0; l < kLanes; ++l) {
        gram(i, j)[l] = row_[j][l] / gram(j, j)[l];
        own[l] -= row_[j][l] * gram(i, j)[l];
      }
    }
    for (std::size_t l = 0; l < kLanes; ++l) smallest[l] = std::min(smallest[l], own[l]);
  }
}

// Of the factored matrix: d' (L D L')^-1 d; leaves D^-1 L^-1 d in the weights.
template <typename T>
void PairSolver<T>::explained(const PairProducts<T>& products, bool ofX, Lanes& share) {
  const std::size_t along = ofX ? products.rowStride : products.columnStride;
  share.fill(T(0));
  for (std::size_t i = 0; i < order_; ++i) {
    const T* const d = products.at + (i + 1) * along;
    Lanes& weight = weights_[i];
    std::copy_n(d, kLanes, weight.begin());
    for (std::size_t j = 0; j < i; ++j)
      for (std::size_t l = 0; l < kLanes; ++l) weight[l] -= gram(i, j)[l] * row_[j][l];
    row_[i] = weight;
    for (std::size_t l = 0; l < kLanes; ++l) {
      weight[l] /= gram(i, i)[l];
      share[l] += row_[i][l] * weight[l];
    }
  }
}

template <typename T>
void PairSolver<T>::backSubstitute() {
  for (std::size_t i = order_; i-- > 0;) {
    for (std::size_t k = i + 1; k < order_; ++k)
      for (std::size_t l = 0; l < kLanes; ++l) weights_[i][l] -= gram(k, i)[l] * weights_[k][l];
  }
}

template <typename T>
void PairSolver<T>::crossProduct(const PairProducts<T>& products, Lanes& cross) const {
  std::copy_n(products.at, kLanes, cross.begin());
  for (std::size_t j = 1; j <= order_; ++j) {
    const T* const h = products.at + j * products.columnStride;
    for (std::size_t i = 1; i <= order_; ++i) {
      const T* const m = products.at + i * products.rowStride + j * products.columnStride;
      for (std::size_t l = 0; l < kLanes; ++l) cross[l] += h[l] * m[l] * weights_[i - 1][l];
    }
  }
}

template <typename T>
void PairSolver<T>::solveBlock(const PairProducts<T>& products, const Shares<T>& shares) {
  Lanes smallest, toY, toX, cross;
  smallest.fill(T(1));
  fillGram(products, false);
  factor(smallest);
  explained(products, false, toX);
  fillGram(products, true);
  factor(smallest);
  explained(products, true, toY);
  backSubstitute();
  crossProduct(products, cross);
  for (std::size_t l = 0; l < kLanes; ++l) {
    const T leftX = T(1) - toX[l], leftY = T(1) - toY[l];
    const T instantaneous = cross[l] * cross[l] / (leftX * leftY);
    const T least = std::min(std::min(smallest[l], T(1) - instantaneous), std::min(leftX, leftY));
    const T missing = least > kLeastPivot<T> ? T(0) : std::numeric_limits<T>::quiet_NaN();
    shares.toY[l] = toY[l] + missing;
    shares.toX[l] = toX[l] + missing;
    shares.instantaneous[l] = instantaneous + missing;
  }
}

template class PairSolver<float>;
template class PairSolver<double>;

}  // namespace connectome
