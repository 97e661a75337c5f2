// Removal of confounds from many time courses by least squares.
//
// The design is an intercept and the given columns. What is removed is the confounds' part alone:
// each course keeps its own mean, so that it stays on its intensity level. Trends are the engine's
// business (it detrends every interval) and are left in unless a column models them.
//
// Householder QR with column pivoting (Businger & Golub 1965): columns that are linear
// combinations of others are left out and counted, instead of spoiling the fit.
#ifndef TAVMAP_PREPARE_REGRESS_H
#define TAVMAP_PREPARE_REGRESS_H

#include <cstddef>
#include <vector>

namespace study {

class ConfoundRegression {
 public:
  // columns: one vector per confound, all of the same length, finite. used: one flag per volume;
  // only those volumes take part in the fit (empty: all of them do). With no columns, or fewer used
  // volumes than 2, nothing is ever removed.
  explicit ConfoundRegression(const std::vector<std::vector<double>>& columns,
                              const std::vector<bool>& used = {});

  // Removes the confounds from course[0 ... volumes) in place. Volumes that are not used in the fit
  // are corrected with the same weights. A course with a value that is not finite is left as it is.
  // Allocates nothing.
  void remove(float* course);

  // Independent directions removed beside the mean: the degrees of freedom that the fit costs.
  [[nodiscard]] int rank() const { return rank_; }
  [[nodiscard]] int volumes() const { return volumes_; }

 private:
  int volumes_ = 0;
  int rank_ = 0;
  std::vector<double> basis_;     // rank_ x volumes_, orthonormal over the volumes of the fit
  std::vector<double> fitBasis_;  // the same with zeros at the volumes that are not in the fit
  std::vector<double> weights_;   // rank_, work area of remove()
};

}  // namespace study

#endif
