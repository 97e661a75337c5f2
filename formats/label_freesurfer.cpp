// Colour tables of FreeSurfer: index, name, red, green, blue and alpha on a line, "#" before comments.
#include <fmt/core.h>

#include "formats/label_forms.h"

namespace formats {
namespace {

constexpr std::size_t kWordsOfFreesurfer = 6;

bool isFreesurferTable(const LabelText& text) {
  const auto lines = text.linesWithoutComments();
  if (lines.empty()) return false;
  const auto words = labelWords(lines[0].text);
  return words.size() == kWordsOfFreesurfer && labelNumber(words[0]) &&
         areNumbers(std::span(words).subspan(2));
}

LabelTable parseFreesurfer(const LabelText& text) {
  LabelCollector labels(text);
  for (const LabelLine& line : text.linesWithoutComments()) {
    const auto words = labelWords(line.text);
    const auto index = words.size() == kWordsOfFreesurfer ? labelNumber(words[0]) : std::nullopt;
    const auto color = index ? labelColor(std::span(words).subspan(2)) : std::nullopt;
    if (!color) {
      text.fail(
          line.number, fmt::format("\"{}\" is no label", line.text),
          "Write index, name (one word), red, green, blue and alpha, such as 17 Left-Hippocampus 220 216 "
          "20 0");
    }
    labels.add(line.number, {*index, std::string(words[1]), color});
  }
  return labels.take();
}

}  // namespace

LabelForm freesurferForm() {
  return {"a FreeSurfer colour table (index name R G B A)", isFreesurferTable, parseFreesurfer};
}

}  // namespace formats
