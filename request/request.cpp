#include "request/request.h"

namespace study {

const char* methodName(Method method) {
  return method == Method::kPlugin ? "plugin" : "calibrated";
}

const char* orderChoiceName(OrderChoice choice) {
  switch (choice) {
    case OrderChoice::kBic:
      return "bic";
    case OrderChoice::kAic:
      return "aic";
    case OrderChoice::kHqc:
      return "hqc";
    case OrderChoice::kFixed:
      break;
  }
  return "fixed";
}

std::optional<Method> methodNamed(std::string_view name) {
  for (const Method method : {Method::kCalibrated, Method::kPlugin}) {
    if (name == methodName(method)) return method;
  }
  return std::nullopt;
}

std::optional<OrderChoice> orderChoiceNamed(std::string_view name) {
  for (const auto choice : {OrderChoice::kFixed, OrderChoice::kBic, OrderChoice::kAic, OrderChoice::kHqc}) {
    if (name == orderChoiceName(choice)) return choice;
  }
  return std::nullopt;
}

const char* methodDescription(Method method) {
  if (method == Method::kPlugin) {
    return "plugin: the numbers of the desktop plug-in, bit for bit. Lag-pair averages in the plug-in's "
           "written form, surrogate models pooled over the courses of the run, one surrogate per voxel, "
           "thresholds by the walk from the strongest voxel down.";
  }
  return "calibrated: unlike the plug-in, least squares over common samples, every sample with weight one; "
         "surrogates from each course's own residuals with random signs, put through all that the course "
         "went through; several surrogates per voxel; and thresholds over the voxels outside the reference "
         "by step-up with p = (1 + exceeding null magnitudes) / (null magnitudes + 1).";
}

}  // namespace study
