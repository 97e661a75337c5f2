#include "bids/bids_filter.h"

namespace study {

std::string spaceOf(const BidsName& name) {
  std::string space = name.has("space") ? name.get("space") : "native";
  if (name.has("res")) space += "_res-" + name.get("res");
  return space;
}

bool isInSpace(const BidsName& name, const std::string& space) {
  return spaceOf(name) == space || (name.has("space") ? name.get("space") : "native") == space;
}

}  // namespace study
