// What a test over participants found, told in places, counts and warnings.
#ifndef TAVMAP_GROUP_GROUP_FINDINGS_H
#define TAVMAP_GROUP_GROUP_FINDINGS_H

#include <filesystem>
#include <vector>

#include "group/group_cells.h"
#include "group/group_images.h"
#include "group/group_test_record.h"
#include "inference/run_test.h"

namespace study {

// A test that was run, borrowed.
struct TestedGroup {
  const GroupCell& cell;
  const GroupDesign& design;
  const GroupImages& images;
  const inference::TestResult& result;
  const GroupInference& inference;
};

// Clusters of the voxels with an enhanced p of at most the level, of those with a family-wise p by the
// maximum, and clusters by mass; of each kind by descending size. When there is none of any, the voxel of the
// largest |t|. The first of each kind, kPeaksWithValues in all, have every participant's value. outDir: where
// the direction maps are.
inline constexpr std::size_t kPeaksWithValues = 6;
[[nodiscard]] std::vector<GroupPeak> groupPeaks(const TestedGroup& test, const std::filesystem::path& outDir);

// Fills counts, thresholds, extremes, symmetry and spread.
void countFindings(const TestedGroup& test, GroupTestRecord& record);

// What a reader must know: errors that are not symmetric, few participants or shuffles, voxels that were left
// out.
[[nodiscard]] std::vector<std::string> groupWarnings(const TestedGroup& test);

}  // namespace study

#endif
