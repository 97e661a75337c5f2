#include "formats/label_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include "formats/atomic_file.h"
#include "formats/label_forms.h"
#include "formats/table.h"

namespace formats {
namespace {

const std::array<LabelForm, 5>& labelForms() {
  static const std::array<LabelForm, 5> forms = {columnsForm(), twoLinesForm(), freesurferForm(),
                                                 mrtrixForm(), fslForm()};
  return forms;
}

// Null when none fits.
const LabelForm* formOf(const LabelText& text) {
  const auto& forms = labelForms();
  const auto found =
      std::find_if(forms.begin(), forms.end(), [&](const LabelForm& form) { return form.fits(text); });
  return found == forms.end() ? nullptr : &*found;
}

std::string knownLabelForms() {
  std::string text;
  for (const LabelForm& form : labelForms()) text += (text.empty() ? "" : ", ") + std::string(form.words);
  return text;
}

[[noreturn]] void failWithoutForm(const LabelText& text) {
  constexpr std::size_t kMostShown = 60;
  const LabelLine& line = text.lines()[0];
  std::string shown(line.text.substr(0, kMostShown));
  std::replace(shown.begin(), shown.end(), '\t', ' ');
  text.fail(line.number, fmt::format("\"{}\" begins no label table that is known here", shown),
            fmt::format("Give one of: {}", knownLabelForms()));
}

}  // namespace

const Label* LabelTable::find(std::int32_t index) const {
  const auto found =
      std::find_if(labels.begin(), labels.end(), [&](const Label& l) { return l.index == index; });
  return found == labels.end() ? nullptr : &*found;
}

const Label* LabelTable::find(const std::string& name) const {
  const auto found =
      std::find_if(labels.begin(), labels.end(), [&](const Label& l) { return l.name == name; });
  return found == labels.end() ? nullptr : &*found;
}

std::string LabelTable::nameOf(std::int32_t index) const {
  const Label* label = find(index);
  return label != nullptr ? label->name : "label-" + std::to_string(index);
}

LabelTable readLabelTable(const std::string& path) {
  return parseLabelTable(readTextFile(path), path);
}

LabelTable parseLabelTable(std::string_view text, const std::string& path) {
  const LabelText table(text, path);
  const LabelForm* form = formOf(table);
  if (form == nullptr) failWithoutForm(table);
  return form->parse(table);
}

bool isLabelTable(const std::string& path) {
  const std::string text = readTextFile(path);
  return formOf(LabelText(text, path)) != nullptr;
}

void writeLabelTable(const std::string& path, const LabelTable& table) {
  std::string text = "index\tname\tcolor\n";
  for (const auto& label : table.labels) {
    char color[16] = "n/a";
    if (label.color)
      std::snprintf(color, sizeof color, "#%06x", static_cast<unsigned>(*label.color & 0xFFFFFFU));
    text += fmt::format("{}\t{}\t{}\n", label.index, tsvCell(label.name), color);
  }
  writeTextFile(path, text);
}

std::string labelTableBeside(const std::string& imagePath) {
  for (const std::string ending : {".nii.gz", ".nii"}) {
    if (!imagePath.ends_with(ending)) continue;
    const std::string table = imagePath.substr(0, imagePath.size() - ending.size()) + ".tsv";
    return std::filesystem::exists(table) ? table : "";
  }
  return "";
}

}  // namespace formats
