#include "host/choice_list.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "host/answer_parsing.h"

namespace host {
namespace {

std::optional<Choice> choiceOf(const std::string& line) {
  const std::size_t dot = line.find(". ");
  if (dot == std::string::npos) return std::nullopt;
  const std::optional<int> number = parseInteger(trimmed(line.substr(0, dot)));
  const std::string name = trimmed(line.substr(dot + 2));
  if (!number || name.empty()) return std::nullopt;
  return Choice{*number, name};
}

template <typename Matches>
std::vector<Choice> where(const std::vector<Choice>& choices, Matches matches) {
  std::vector<Choice> found;
  std::copy_if(choices.begin(), choices.end(), std::back_inserter(found),
               [&](const Choice& choice) { return matches(choice.name); });
  return found;
}

}  // namespace

std::vector<Choice> choicesOf(const IntegerQuestion& question, const std::string& text) {
  std::vector<Choice> choices;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::optional<Choice> choice = choiceOf(line);
    if (choice && choice->number >= question.min && choice->number <= question.max)
      choices.push_back(*choice);
  }
  return choices;
}

std::vector<Choice> meantBy(std::string_view answer, const std::vector<Choice>& choices) {
  if (answer.empty()) return {};
  const std::string small = inSmallLetters(answer);
  auto found = where(choices, [&](const std::string& name) { return name == answer; });
  if (found.empty())
    found = where(choices, [&](const std::string& name) { return inSmallLetters(name) == small; });
  if (found.empty())
    found = where(choices, [&](const std::string& name) {
      return inSmallLetters(name).find(small) != std::string::npos;
    });
  return found;
}

std::string enumerated(const std::vector<Choice>& choices) {
  constexpr std::size_t kMost = 10;
  std::string text;
  for (std::size_t i = 0; i < choices.size() && i < kMost; ++i)
    text += fmt::format("{}{}. {}", i == 0 ? "" : ", ", choices[i].number, choices[i].name);
  return choices.size() > kMost ? fmt::format("{} and {} more", text, choices.size() - kMost) : text;
}

}  // namespace host
