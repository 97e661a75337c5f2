#include "study/request.h"

namespace study {

const char* methodName(Method method) { return method == Method::kPlugin ? "plugin" : "calibrated"; }

const char* orderChoiceName(OrderChoice choice) {
  switch (choice) {
    case OrderChoice::kBic: return "bic";
    case OrderChoice::kAic: return "aic";
    case OrderChoice::kHqc: return "hqc";
    case OrderChoice::kFixed: break;
  }
  return "fixed";
}

const char* methodDescription(Method method) {
  if (method == Method::kPlugin) {
    return "plugin: the numbers of the desktop plug-in, bit for bit. Lag-pair averages in the plug-in's "
           "written form, surrogate models pooled over the courses of the run, one surrogate per voxel, "
           "thresholds by the walk from the strongest voxel down.";
  }
  return "calibrated: unlike the plug-in, lag-pair averages in the consistent form (matters from order 2 on), "
         "surrogates from each course's own model, several surrogates per voxel, and thresholds over the voxels "
         "outside the reference by step-up with p = (1 + exceeding null magnitudes) / (null magnitudes + 1), so "
         "that their false discovery rate stays below q.";
}

}  // namespace study
