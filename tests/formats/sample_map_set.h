// A small map set with everything that such a set can hold.
#ifndef TAVMAP_TESTS_FORMATS_SAMPLE_MAP_SET_H
#define TAVMAP_TESTS_FORMATS_SAMPLE_MAP_SET_H

#include <limits>

#include "formats/map_set.h"

namespace formats_test {

inline formats::MapSet sampleMapSet() {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  formats::MapSet set;
  set.xStart = 57, set.xEnd = 66, set.yStart = 52, set.yEnd = 58, set.zStart = 59, set.zEnd = 65;
  set.resolution = 3;
  set.affine = formats::talairachAffine(57, 52, 59, 3);
  set.spaceCode = 3;
  set.engineVersion = "1.5";
  set.thresholdNames = {"thres q=0.050", "thres q=0.010"};
  formats::Map map;
  map.name = "faces: Ref2Vox";
  map.kind = 101;
  map.lowerThreshold = 0.1F, map.upperThreshold = 0.3F;
  map.positiveColorFrom = 64, map.positiveColorTo = 16711680;
  map.useColors = true;
  map.thresholds = {0.1F, kNan};
  map.values = {0, 0.05F, 0.1F, 0.2F, 0, 0, 0, 0.3F, 0, 0, 0, 0};
  set.maps.push_back(map);
  map.name = "faces: dTAV";
  map.thresholds = {0.2F, 0.4F};
  map.negativeColorFrom = 16384, map.negativeColorTo = 65280;
  map.values = {0.25F, -0.5F, 0, kNan, 0, 0, 0, 0.1F, 0, 0, 0, 0};
  set.maps.push_back(map);
  return set;
}

}  // namespace formats_test

#endif
