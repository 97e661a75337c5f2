#include "results/record.h"

#include <cmath>

namespace study {

bool hasPeak(const ConditionRecord& condition, const MapResult& map) {
  return condition.voxelsComputed() > 0 && std::isfinite(map.peak);
}

}  // namespace study
