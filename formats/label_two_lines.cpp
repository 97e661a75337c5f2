// Two lines per label, as with the Schaefer atlas: the name, then index, red, green, blue and alpha.
#include <fmt/core.h>

#include "formats/label_forms.h"

namespace formats {
namespace {

bool isLineOfNumbers(std::string_view line) {
  const auto words = labelWords(line);
  return words.size() == 5 && areNumbers(words);
}

bool comesInTwoLines(const LabelText& text) {
  const auto& lines = text.lines();
  return lines.size() > 1 && !isLineOfNumbers(lines[0].text) && isLineOfNumbers(lines[1].text);
}

Label labelOfTwoLines(const LabelText& text, const LabelLine& name, const LabelLine& numbers) {
  const auto words = labelWords(numbers.text);
  const auto index = words.size() == 5 ? labelNumber(words[0]) : std::nullopt;
  const auto color = index ? labelColor(std::span(words).subspan(1)) : std::nullopt;
  if (!color) {
    text.fail(numbers.number, fmt::format("\"{}\" does not number the label above it", numbers.text),
              "Write index, red, green, blue and alpha below every name, such as 1 120 18 131 255");
  }
  return {*index, std::string(name.text), color};
}

LabelTable parseTwoLines(const LabelText& text) {
  LabelCollector labels(text);
  const auto& lines = text.lines();
  for (std::size_t i = 0; i < lines.size(); i += 2) {
    if (i + 1 == lines.size()) {
      text.fail(lines[i].number, fmt::format("\"{}\" has no line of numbers below it", lines[i].text),
                "Write index, red, green, blue and alpha below every name");
    }
    labels.add(lines[i + 1].number, labelOfTwoLines(text, lines[i], lines[i + 1]));
  }
  return labels.take();
}

}  // namespace

LabelForm twoLinesForm() {
  return {"two lines per label (name; index R G B A)", comesInTwoLines, parseTwoLines};
}

}  // namespace formats
