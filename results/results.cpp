#include "results/results.h"

namespace study {

const char* statusName(StatusCode code) {
  switch (code) {
    case StatusCode::kOutsideMask:
      return "outside the mask";
    case StatusCode::kComputed:
      return "computed";
    case StatusCode::kBelowInclusion:
      return "below the inclusion threshold";
    case StatusCode::kIllDefined:
      return "ill-defined";
    case StatusCode::kInsideReference:
      return "inside the reference";
    case StatusCode::kNotFinite:
      return "not finite";
  }
  return "";
}

}  // namespace study
