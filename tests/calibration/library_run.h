// A request through the library calls that `tavmap run` and its workers make, without processes and
// without written maps.
#ifndef TAVMAP_TESTS_CALIBRATION_LIBRARY_RUN_H
#define TAVMAP_TESTS_CALIBRATION_LIBRARY_RUN_H

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "study/study_plan.h"
#include "tav/run_observer.h"
#include "tav/run_options.h"

namespace calibration {

// One map of one reference.
struct FoundMap {
  std::size_t reference;  // index among the request's
  tav::MapType type;
  std::vector<float> values;                  // x fastest
  std::vector<tav::MapThreshold> thresholds;  // by ascending q; passing voxels outside the reference
  // Whether any voxel, and any cluster, outside the reference has a family-wise p of .05 or less.
  bool anyFamilyWise = false, anyCluster = false;
  // -log10 of the p of single voxels, NaN where there is none; empty unless asked for.
  std::vector<float> minusLogP = {};

  // Whether the voxel, which is not the reference's, reaches threshold i.
  [[nodiscard]] bool passes(std::size_t voxel, std::size_t i) const;
};

class LibraryRun {
 public:
  // Plans the request, whose relative paths start at the folder, and imports its runs. Throws as those do.
  LibraryRun(const std::string& request, const std::filesystem::path& folder);

  // Which order the criterion chooses.
  [[nodiscard]] int orderBy(study::OrderChoice choice) const;
  // The maps with thresholds of all references, in the request's order, under models of this order.
  // `change` may change what the engine is asked for.
  [[nodiscard]] std::vector<FoundMap> compute(int order,
                                              const std::function<void(tav::RunOptions&)>& change = nullptr);

 private:
  [[nodiscard]] std::vector<const study::Region*> regions() const;

  study::StudyPlan plan_;
};

}  // namespace calibration

#endif
