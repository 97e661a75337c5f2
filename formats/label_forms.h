// The forms in which label tables come, one file each, and what they share. readLabelTable() chooses
// among them by content.
#ifndef TAVMAP_FORMATS_LABEL_FORMS_H
#define TAVMAP_FORMATS_LABEL_FORMS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/label_table.h"

namespace formats {

struct LabelLine {
  std::size_t number = 0;  // from 1
  std::string_view text;   // without blanks at either end
};

// The text of a table, borrowed, without byte order mark.
class LabelText {
 public:
  // Throws FileError for what is no text or holds nothing but blanks.
  LabelText(std::string_view text, std::string path);

  [[nodiscard]] std::string_view whole() const { return whole_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::vector<LabelLine>& lines() const { return lines_; }  // that are not blank
  [[nodiscard]] std::vector<LabelLine> linesWithoutComments() const;            // nor begin with "#"

  [[noreturn]] void fail(std::size_t line, const std::string& reason, const std::string& remedy) const;

 private:
  std::string_view whole_;
  std::string path_;
  std::vector<LabelLine> lines_;
};

// What every form promises: an index once, a name, no background. Borrows the text.
class LabelCollector {
 public:
  explicit LabelCollector(const LabelText& text) : text_(text) {}
  // Throws FileError with the line.
  void add(std::size_t line, Label label);
  [[nodiscard]] LabelTable take() { return std::move(table_); }

 private:
  const LabelText& text_;
  std::set<std::int32_t> seen_;
  LabelTable table_;
};

[[nodiscard]] std::vector<std::string_view> labelWords(std::string_view line);  // apart by blanks and tabs
[[nodiscard]] std::optional<std::int32_t> labelNumber(std::string_view word);   // a whole number and no more
// Of red, green, blue and alpha, 0 to 255 each; the alpha is not kept. Empty for anything else.
[[nodiscard]] std::optional<std::uint32_t> labelColor(std::span<const std::string_view> words);
[[nodiscard]] bool areNumbers(std::span<const std::string_view> words);

struct LabelForm {
  const char* words;  // what it looks like, in messages
  bool (*fits)(const LabelText& text);
  LabelTable (*parse)(const LabelText& text);  // throws FileError with the line
};

[[nodiscard]] LabelForm columnsForm();     // label_columns.cpp
[[nodiscard]] LabelForm twoLinesForm();    // label_two_lines.cpp
[[nodiscard]] LabelForm freesurferForm();  // label_freesurfer.cpp
[[nodiscard]] LabelForm mrtrixForm();      // label_mrtrix.cpp
[[nodiscard]] LabelForm fslForm();         // label_fsl.cpp

}  // namespace formats

#endif
