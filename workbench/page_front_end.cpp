#include "workbench/page_front_end.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "formats/file_error.h"
#include "host/answer_parsing.h"
#include "host/choice_list.h"
#include "host/file_checks.h"
#include "host/html_text.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

Json choicesJson(const host::IntegerQuestion& question, const std::string& text) {
  Json choices = Json::array();
  for (const host::Choice& choice : host::choicesOf(question, text))
    choices.push_back({{"number", choice.number}, {"name", choice.name}});
  return choices;
}

// A page answers with what was typed: the limits, and what counts as a number, are the host's.
template <typename Question>
Json numberFrom(const Question& question, const Json& answer) {
  const auto value =
      answer.is_string() ? host::accepted(question, answer.get_ref<const std::string&>()) : std::nullopt;
  if (!value) throw Refusal(400, fmt::format("Please give {}, or cancel.", host::requirement(question)));
  return *value;
}

Json textFrom(const host::TextQuestion& question, const Json& answer) {
  if (!answer.is_string() || answer.get_ref<const std::string&>().size() > question.maxBytes)
    throw Refusal(400, fmt::format("Please give a text of at most {} bytes, or cancel.", question.maxBytes));
  // A terminal cannot type more, and an answer script cannot hold it.
  if (answer.get_ref<const std::string&>().find_first_of(std::string_view("\0\r\n", 3)) != std::string::npos)
    throw Refusal(400, "Please give a text of one line, or cancel.");
  return answer;
}

Json yesFrom(const Json& answer) {
  if (!answer.is_boolean()) throw Refusal(400, "Please say yes or no.");
  return answer;
}

Json nothingFrom(const Json&) {
  return true;
}

void requireNoProblem(const std::string& problem) {
  if (!problem.empty()) throw Refusal(400, fmt::format("Not possible: {}", problem));
}

Json fileToOpen(const FolderGuard& folders, const host::FileQuestion& question, const Json& answer) {
  const std::string path = folders.resolved(textOf(answer, "folder"), textOf(answer, "path")).string();
  requireNoProblem(host::problemWithFileToOpen(question, path));
  return path;
}

Json fileToSave(const FolderGuard& folders, const host::FileQuestion& question, const Json& answer) {
  const std::filesystem::path named = textOf(answer, "path");
  const std::filesystem::path folder =
      folders.resolved(textOf(answer, "folder"), named.parent_path().string());
  const std::string path = folders.resolvedForWriting(folder / named.filename()).string();
  requireNoProblem(host::problemWithFileToSave(question, path));
  return path;
}

template <typename Value>
std::optional<Value> valueOf(const std::optional<Json>& answer) {
  return answer ? std::optional(answer->get<Value>()) : std::nullopt;
}

}  // namespace

void PageFrontEnd::log(std::string_view html) {
  dialogs_.log(host::logText(html));
}

void PageFrontEnd::showMessage(const std::string& html) {
  static_cast<void>(dialogs_.ask({{"kind", "message"}, {"text", host::dialogText(html)}}, nothingFrom));
}

bool PageFrontEnd::askYesNo(const std::string& html) {
  return valueOf<bool>(dialogs_.ask({{"kind", "yesno"}, {"text", host::dialogText(html)}}, yesFrom))
      .value_or(false);
}

std::optional<int> PageFrontEnd::askInteger(const host::IntegerQuestion& question) {
  const std::string text = host::dialogText(question.html);
  const Json json{{"kind", "integer"},
                  {"text", text},
                  {"initial", std::to_string(question.initial)},
                  {"range", host::rangeText(question)},
                  {"choices", choicesJson(question, text)},
                  {"volumes", question.volumes}};
  return valueOf<int>(dialogs_.ask(json, [&](const Json& answer) { return numberFrom(question, answer); }));
}

std::optional<float> PageFrontEnd::askNumber(const host::NumberQuestion& question) {
  const Json json{{"kind", "number"},
                  {"text", host::dialogText(question.html)},
                  {"initial", host::decimalText(question.initial)},
                  {"range", host::rangeText(question)}};
  return valueOf<float>(dialogs_.ask(json, [&](const Json& answer) { return numberFrom(question, answer); }));
}

std::optional<std::string> PageFrontEnd::askText(const host::TextQuestion& question) {
  const Json json{{"kind", "text"}, {"text", host::dialogText(question.html)}, {"initial", question.initial}};
  return valueOf<std::string>(
      dialogs_.ask(json, [&](const Json& answer) { return textFrom(question, answer); }));
}

Json PageFrontEnd::fileJson(const char* kind, const host::FileQuestion& question) const {
  std::error_code ignored;
  const FolderGuard::Place start =
      folders_.placeOf(std::filesystem::weakly_canonical(host::resolvedPath(".", question.folder), ignored));
  return {{"kind", kind},
          {"text", host::dialogText(question.title)},
          {"filter", question.filter},
          {"start", {{"folder", start.folder}, {"path", start.path}}}};
}

std::optional<std::string> PageFrontEnd::askFileToOpen(const host::FileQuestion& question) {
  return valueOf<std::string>(dialogs_.ask(fileJson("open", question), [&](const Json& answer) {
    return fileToOpen(folders_, question, answer);
  }));
}

// Maps that cannot be drawn have been saved all the same.
void PageFrontEnd::showSavedMaps(const std::string& path) {
  const FolderGuard::Place saved = folders_.placeOf(std::filesystem::weakly_canonical(path));
  Json pictures = Json::array();
  std::string problem;
  try {
    for (const std::string& picture : draw_(path)) {
      const FolderGuard::Place place = folders_.placeOf(std::filesystem::weakly_canonical(picture));
      pictures.push_back({{"folder", place.folder}, {"path", place.path}});
    }
  } catch (const formats::FileError& error) {
    problem = error.what();
  }
  dialogs_.savedMaps({{"path", path},
                      {"place", {{"folder", saved.folder}, {"path", saved.path}}},
                      {"pictures", pictures},
                      {"problem", problem}});
}

std::optional<std::string> PageFrontEnd::askFileToSave(const host::FileQuestion& question) {
  return valueOf<std::string>(dialogs_.ask(fileJson("save", question), [&](const Json& answer) {
    return fileToSave(folders_, question, answer);
  }));
}

}  // namespace workbench
