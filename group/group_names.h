// Names of the files of a test over participants, in the folder "group" of the output folder.
#ifndef TAVMAP_GROUP_GROUP_NAMES_H
#define TAVMAP_GROUP_GROUP_NAMES_H

#include <string>

#include "group/group_cells.h"

namespace study {

inline constexpr const char* kGroupFolder = "group";
inline constexpr const char* kGroupRecordEnd = "_grouptest.json";

// What images hold: the part behind "stat-" of their names.
namespace group_image {
inline constexpr const char* kEffect = "effect";  // the contrast's estimate
inline constexpr const char* kT = "t";
inline constexpr const char* kZ = "z";
inline constexpr const char* kP = "p";                // -log10 of the p of each voxel by itself
inline constexpr const char* kPFwe = "pfwe";          // family-wise, by the maximum
inline constexpr const char* kTfce = "tfce";          // enhanced values
inline constexpr const char* kPTfce = "pfwetfce";     // family-wise, by the largest enhanced value
inline constexpr const char* kPMass = "pfwecluster";  // family-wise, of the voxel's cluster
inline constexpr const char* kQ = "qfdr";
inline constexpr const char* kCount = "n";  // participants with a value
}  // namespace group_image

class GroupNames {
 public:
  GroupNames(const std::string& test, const GroupCell& cell);
  // [ses-2_]task-rest_seed-V1_contrast-facesdTAV_desc-patients_stat-t_statmap.nii.gz
  [[nodiscard]] std::string image(const std::string& what) const;
  [[nodiscard]] std::string clusters() const { return stem_ + "_clusters.tsv"; }
  [[nodiscard]] std::string values() const { return stem_ + "_values.tsv"; }
  [[nodiscard]] std::string record() const { return stem_ + kGroupRecordEnd; }

 private:
  std::string stem_;
};

}  // namespace study

#endif
