// How the models of a voxel are fitted.
#ifndef TAVMAP_TAV_FIT_FORM_H
#define TAVMAP_TAV_FIT_FORM_H

namespace tav {

enum class FitForm {
  // From lag-pair averages as the plug-in has always written them: intervals weigh the same whatever
  // their length, and from order 2 on the joint models differ from least squares. One surrogate is
  // drawn for every interval.
  kWritten,
  // Least squares over common samples: all models of a condition over the volumes t = p ... n - 1 of
  // each interval, every sample with weight one, intervals and runs added up before fitting. A
  // surrogate is drawn for a voxel and serves all its intervals.
  kLeastSquares
};

}  // namespace tav

#endif
