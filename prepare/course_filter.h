// What preparation does to one voxel's time course: leading volumes dropped, confounds regressed
// out, censored volumes bridged.
#ifndef TAVMAP_PREPARE_COURSE_FILTER_H
#define TAVMAP_PREPARE_COURSE_FILTER_H

#include <vector>

#include "prepare/regress.h"

namespace study {

class CourseFilter {
 public:
  // volumes: of the stored image. dropped: leading volumes left out. confounds: columns of
  // volumes - dropped values each. kept: one flag per stored volume; a volume that is not kept takes
  // no part in the regression. Its value is replaced by the straight line between its kept
  // neighbours: no interval contains it, but a surrogate's model is fitted to the whole course,
  // which a spike would dominate.
  CourseFilter(int volumes, int dropped, const std::vector<std::vector<double>>& confounds,
               const std::vector<bool>& kept);

  // course: `volumes` values; on return the first outputVolumes() hold the result. Allocates nothing.
  void apply(float* course);

  [[nodiscard]] int outputVolumes() const { return volumes_ - dropped_; }
  [[nodiscard]] int rank() const { return regression_.rank(); }
  [[nodiscard]] bool changesNothing() const {
    return dropped_ == 0 && regression_.rank() == 0 && gaps_.empty();
  }

 private:
  struct Gap {
    int before, after;  // kept neighbours, 0-based in the output; -1 or outputVolumes() at the ends
  };
  void findGaps(const std::vector<bool>& kept);
  void bridge(const Gap& gap, float* course) const;

  int volumes_, dropped_;
  ConfoundRegression regression_;
  std::vector<Gap> gaps_;
};

}  // namespace study

#endif
