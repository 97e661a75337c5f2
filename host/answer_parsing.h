// Typed or scripted answers to values, and the limits that every front end keeps.
#ifndef TAVMAP_HOST_ANSWER_PARSING_H
#define TAVMAP_HOST_ANSWER_PARSING_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/front_end.h"

namespace host {

// Without white space at either end.
[[nodiscard]] std::string trimmed(std::string_view text);

// With ASCII letters made small, others as they are.
[[nodiscard]] std::string inSmallLetters(std::string_view text);

// A whole decimal number and nothing else; none when it is no number or does not fit.
[[nodiscard]] std::optional<int> parseInteger(std::string_view text);

// A finite decimal number and nothing else, with a point whatever the locale.
[[nodiscard]] std::optional<float> parseNumber(std::string_view text);

// The shortest text that gives the same number back: "0.05".
[[nodiscard]] std::string decimalText(float value);

// "1 to 4": the limits of an answer.
[[nodiscard]] std::string rangeText(const IntegerQuestion& question);
[[nodiscard]] std::string rangeText(const NumberQuestion& question);

// "a whole number from 1 to 4": what an answer must be.
[[nodiscard]] std::string requirement(const IntegerQuestion& question);
[[nodiscard]] std::string requirement(const NumberQuestion& question);

// The answer when it is a number within the question's limits.
[[nodiscard]] std::optional<int> accepted(const IntegerQuestion& question, std::string_view text);
[[nodiscard]] std::optional<float> accepted(const NumberQuestion& question, std::string_view text);

// `path` made absolute against `folder` (itself made absolute) and without "." and "..".
[[nodiscard]] std::string resolvedPath(const std::filesystem::path& folder, std::string_view path);

}  // namespace host

#endif
