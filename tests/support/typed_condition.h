// A condition of one interval of the run "run1".
#ifndef TAVMAP_TESTS_SUPPORT_TYPED_CONDITION_H
#define TAVMAP_TESTS_SUPPORT_TYPED_CONDITION_H

#include <string>

#include "request/request.h"

inline study::ConditionRequest typedCondition(const std::string& name, study::VolumeRange range) {
  study::ConditionRequest condition;
  condition.name = name;
  condition.kind = study::IntervalKind::kTyped;
  condition.typed = {range};
  condition.parts = {{"run1", "run1", {}}};
  return condition;
}

#endif
