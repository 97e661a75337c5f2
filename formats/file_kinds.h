// What a file is, by its name.
#ifndef TAVMAP_FORMATS_FILE_KINDS_H
#define TAVMAP_FORMATS_FILE_KINDS_H

#include <string>

namespace formats {

[[nodiscard]] inline bool isNiftiName(const std::string& path) {
  return path.ends_with(".nii") || path.ends_with(".nii.gz");
}
[[nodiscard]] inline bool isVtcName(const std::string& path) {
  return path.ends_with(".vtc");
}
[[nodiscard]] inline bool isMapSetName(const std::string& path) {
  return path.ends_with(".tav");
}
[[nodiscard]] inline bool isTableName(const std::string& path) {
  return path.ends_with(".tsv") || path.ends_with(".csv") || path.ends_with(".prt") || path.ends_with(".txt");
}

}  // namespace formats

#endif
