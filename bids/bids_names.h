// File names of the Brain Imaging Data Structure: entities (key-value), suffix, extension, as in
// "sub-01_task-rest_run-1_space-T1w_desc-preproc_bold.nii.gz".
#ifndef TAVMAP_BIDS_BIDS_NAMES_H
#define TAVMAP_BIDS_BIDS_NAMES_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace study {

struct BidsName {
  std::vector<std::pair<std::string, std::string>> entities;  // in the order of the name
  std::string suffix;                                         // "bold"
  std::string extension;                                      // with its dot: ".nii.gz"

  // The entity's value, empty when the name has none.
  [[nodiscard]] std::string get(std::string_view key) const;
  [[nodiscard]] bool has(std::string_view key) const { return !get(key).empty(); }
  void set(std::string_view key, std::string value);
  void erase(std::string_view key);
};

// fileName without folders. A name that does not follow the scheme gives an empty suffix.
[[nodiscard]] BidsName parseBidsName(std::string_view fileName);

// Entities in the order of the standard (unknown keys after the known ones, in their order), suffix
// and extension.
[[nodiscard]] std::string formatBidsName(const BidsName& name);

// The entities alone, joined by "_": what output names begin with.
[[nodiscard]] std::string formatEntities(const BidsName& name);

// Only letters and digits, as labels must be: "LH-V1" becomes "LHV1". Empty becomes "x".
[[nodiscard]] std::string bidsLabel(std::string_view text);

// Index entities with different leading zeros are the same: run-1 and run-01. Other labels compare
// byte for byte.
[[nodiscard]] bool sameLabel(std::string_view a, std::string_view b);

// "01" from "sub-01" or from "01".
[[nodiscard]] std::string withoutPrefix(std::string_view label, std::string_view key);

}  // namespace study

#endif
