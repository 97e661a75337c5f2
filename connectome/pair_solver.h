// Measures of one series with many others, from the products of their vectors (lag_basis.h).
#ifndef TAVMAP_CONNECTOME_PAIR_SOLVER_H
#define TAVMAP_CONNECTOME_PAIR_SOLVER_H

#include <array>
#include <cstddef>
#include <vector>

namespace connectome {

// Measures as shares: 1 - exp(-F) of what they explain, which are between 0 and 1 and grow with F.
template <typename T>
struct Shares {
  T* toY;            // of y's error that x's past explains: F(x -> y)
  T* toX;            // F(y -> x)
  T* instantaneous;  // squared correlation of the joint errors
};

// Product of vector i of x with vector j of node y: at[i * rowStride + j * columnStride + y].
template <typename T>
struct PairProducts {
  const T* at;
  std::size_t rowStride, columnStride;
};

// With e the errors and Q the pasts, M = Qx'Qy, d = Qx'e_y, h = Qy'e_x and g = e_x'e_y:
//   share to y = d' (I - M M')^-1 d,  share to x = h' (I - M'M)^-1 h,
//   cross product of the joint errors = g + h'M' (I - M M')^-1 d
// (least squares by blocks; Geweke 1982, doi:10.1080/01621459.1982.10477803, for the measures).
// In T = float or double, kLanes nodes at a time.
template <typename T>
class PairSolver {
 public:
  static constexpr std::size_t kLanes = 16;
  explicit PairSolver(int order);

  // nodes: a multiple of kLanes, and so many shares of each kind are written. A pair whose models are nearly
  // singular for T gets NaN throughout: a pivot below 1e-3 (float) or 1e-12 (double).
  void solve(const PairProducts<T>& products, std::size_t nodes, const Shares<T>& shares);

 private:
  using Lanes = std::array<T, kLanes>;
  void solveBlock(const PairProducts<T>& products, const Shares<T>& shares);
  void fillGram(const PairProducts<T>& products, bool ofX);
  void factor(Lanes& smallest);
  void explained(const PairProducts<T>& products, bool ofX, Lanes& share);
  void backSubstitute();
  void crossProduct(const PairProducts<T>& products, Lanes& cross) const;
  [[nodiscard]] Lanes& gram(std::size_t i, std::size_t j) { return gram_[i * order_ + j]; }

  std::size_t order_;
  std::vector<Lanes> gram_;     // lower triangle; then L below the diagonal, D on it
  std::vector<Lanes> row_;      // of L D
  std::vector<Lanes> weights_;  // (I - M M')^-1 d
};

// A multiple of kLanes.
[[nodiscard]] constexpr std::size_t padded(std::size_t nodes) {
  constexpr std::size_t kLanes = PairSolver<float>::kLanes;
  return (nodes + kLanes - 1) / kLanes * kLanes;
}

extern template class PairSolver<float>;
extern template class PairSolver<double>;

}  // namespace connectome

#endif
