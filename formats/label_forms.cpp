#include "formats/label_forms.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "formats/file_error.h"

namespace formats {
namespace {

constexpr std::string_view kMarkOfByteOrder = "\xEF\xBB\xBF";
constexpr std::string_view kWhite = " \t\r";

std::string_view withoutEnds(std::string_view text) {
  const auto first = text.find_first_not_of(kWhite);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhite) - first + 1);
}

std::vector<LabelLine> linesOf(std::string_view text) {
  std::vector<LabelLine> lines;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const LabelLine line{number, withoutEnds(text.substr(0, end))};
    if (!line.text.empty()) lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace

LabelText::LabelText(std::string_view text, std::string path) : whole_(text), path_(std::move(path)) {
  if (whole_.starts_with(kMarkOfByteOrder)) whole_.remove_prefix(kMarkOfByteOrder.size());
  if (whole_.find('\0') != std::string_view::npos)
    throw FileError(path_, "it is no text file", "Give a label table");
  lines_ = linesOf(whole_);
  if (lines_.empty()) throw FileError(path_, "the table is empty", "Give a label table");
}

std::vector<LabelLine> LabelText::linesWithoutComments() const {
  std::vector<LabelLine> kept;
  for (const LabelLine& line : lines_) {
    if (!line.text.starts_with('#')) kept.push_back(line);
  }
  return kept;
}

void LabelText::fail(std::size_t line, const std::string& reason, const std::string& remedy) const {
  throw FileError(path_, fmt::format("line {}: {}", line, reason), remedy);
}

void LabelCollector::add(std::size_t line, Label label) {
  if (!seen_.insert(label.index).second) {
    text_.fail(line, fmt::format("the index {} comes twice", label.index), "Give every region its own index");
  }
  if (label.name.empty()) text_.fail(line, "a region has no name", "Name it");
  if (label.index != 0) table_.labels.push_back(std::move(label));
}

std::vector<std::string_view> labelWords(std::string_view line) {
  std::vector<std::string_view> words;
  for (line = withoutEnds(line); !line.empty(); line = withoutEnds(line)) {
    const std::size_t end = std::min(line.find_first_of(kWhite), line.size());
    words.push_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return words;
}

std::optional<std::int32_t> labelNumber(std::string_view word) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return value;
}

std::optional<std::uint32_t> labelColor(std::span<const std::string_view> words) {
  if (words.size() != 4) return std::nullopt;
  std::uint32_t color = 0;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const auto part = labelNumber(words[i]);
    if (!part || *part < 0 || *part > 255) return std::nullopt;
    if (i < 3) color = color << 8U | static_cast<std::uint32_t>(*part);
  }
  return color;
}

bool areNumbers(std::span<const std::string_view> words) {
  return std::all_of(words.begin(), words.end(),
                     [](std::string_view word) { return labelNumber(word).has_value(); });
}

}  // namespace formats
