#include "host/answer_parsing.h"

#include <fmt/core.h>

#include <charconv>
#include <cmath>

namespace host {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

template <typename Question, typename Number>
std::optional<Number> withinLimits(const Question& question, std::optional<Number> value) {
  if (!value || *value < question.min || *value > question.max) return std::nullopt;
  return value;
}

}  // namespace

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1));
}

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  for (char& c : small)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return small;
}

std::optional<int> parseInteger(std::string_view text) {
  return parsed<int>(text);
}

std::optional<float> parseNumber(std::string_view text) {
  const std::optional<float> value = parsed<float>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::string decimalText(float value) {
  char buffer[32];
  char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

std::string rangeText(const IntegerQuestion& question) {
  return fmt::format("{} to {}", question.min, question.max);
}

std::string rangeText(const NumberQuestion& question) {
  return fmt::format("{} to {}", decimalText(question.min), decimalText(question.max));
}

std::string requirement(const IntegerQuestion& question) {
  return "a whole number from " + rangeText(question);
}

std::string requirement(const NumberQuestion& question) {
  return "a number from " + rangeText(question);
}

std::optional<int> accepted(const IntegerQuestion& question, std::string_view text) {
  return withinLimits(question, parseInteger(text));
}

std::optional<float> accepted(const NumberQuestion& question, std::string_view text) {
  return withinLimits(question, parseNumber(text));
}

std::string resolvedPath(const std::filesystem::path& folder, std::string_view path) {
  return (std::filesystem::absolute(folder) / path).lexically_normal().string();
}

}  // namespace host
