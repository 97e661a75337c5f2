// Label tables: read in the forms of label_forms.h, written in the manner of BIDS (*_dseg.tsv: columns
// index, name and color).
#ifndef TAVMAP_FORMATS_LABEL_TABLE_H
#define TAVMAP_FORMATS_LABEL_TABLE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

struct Label {
  std::int32_t index = 0;
  std::string name;
  std::optional<std::uint32_t> color;  // 0xRRGGBB
};

struct LabelTable {
  std::vector<Label> labels;  // in file order, without the background (index 0)

  // Null when there is none.
  [[nodiscard]] const Label* find(std::int32_t index) const;
  [[nodiscard]] const Label* find(const std::string& name) const;
  // The name of a label, "label-7" when the table does not know 7.
  [[nodiscard]] std::string nameOf(std::int32_t index) const;
};

// The form is told by the content. Throws FileError with the line: no known form (the message lists them), an
// index that is no whole number or comes twice, an empty name, a color that is none.
[[nodiscard]] LabelTable readLabelTable(const std::string& path);
[[nodiscard]] LabelTable parseLabelTable(std::string_view text, const std::string& path);
// Whether the file begins as one of the forms does. Throws FileError for what is no text.
[[nodiscard]] bool isLabelTable(const std::string& path);

void writeLabelTable(const std::string& path, const LabelTable& table);

// The table that goes with a label image: the image's name with .tsv for .nii or .nii.gz.
// Empty when there is no such file.
[[nodiscard]] std::string labelTableBeside(const std::string& imagePath);

}  // namespace formats

#endif
