// Label files of MRtrix: index, short name, long name, red, green, blue and alpha on a line, "#" before
// comments. The long name, which may have several words, is the region's.
#include <fmt/core.h>

#include "formats/label_forms.h"

namespace formats {
namespace {

constexpr std::size_t kFewestWordsOfMrtrix = 7;

std::optional<Label> mrtrixLabel(std::string_view line) {
  const auto words = labelWords(line);
  if (words.size() < kFewestWordsOfMrtrix) return std::nullopt;
  const auto index = labelNumber(words[0]);
  const auto color = labelColor(std::span(words).last(4));
  if (!index || !color) return std::nullopt;
  std::string name;
  for (std::size_t i = 2; i + 4 < words.size(); ++i)
    name += (name.empty() ? "" : " ") + std::string(words[i]);
  if (name.size() > 1 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
  return Label{*index, name, color};
}

bool isMrtrixTable(const LabelText& text) {
  const auto lines = text.linesWithoutComments();
  if (lines.empty()) return false;
  const auto words = labelWords(lines[0].text);
  return words.size() >= kFewestWordsOfMrtrix && labelNumber(words[0]) &&
         areNumbers(std::span(words).last(4));
}

LabelTable parseMrtrix(const LabelText& text) {
  LabelCollector labels(text);
  for (const LabelLine& line : text.linesWithoutComments()) {
    auto label = mrtrixLabel(line.text);
    if (!label) {
      text.fail(line.number, fmt::format("\"{}\" is no label", line.text),
                "Write index, short name, long name, red, green, blue and alpha, such as 1 L.BSTS "
                "ctx-lh-bankssts 25 5 25 255");
    }
    labels.add(line.number, std::move(*label));
  }
  return labels.take();
}

}  // namespace

LabelForm mrtrixForm() {
  return {"an MRtrix label file (index, short name, long name, R G B A)", isMrtrixTable, parseMrtrix};
}

}  // namespace formats
