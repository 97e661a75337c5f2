#include "host/script_front_end.h"

#include <fmt/core.h>

#include <algorithm>
#include <ostream>
#include <utility>

#include "host/answer_parsing.h"
#include "host/file_checks.h"
#include "host/html_text.h"
#include "host/run_ended.h"

namespace host {
namespace {

std::string shown(const Answer& answer) {
  std::string text(tagOf(answer.kind));
  return answer.value.empty() ? text : fmt::format("{} {}", text, answer.value);
}

std::string atLine(const Script& script, int line) {
  return fmt::format("{}:{}: ", script.path, line);
}

}  // namespace

ScriptFrontEnd::ScriptFrontEnd(Script script, std::ostream& out) : script_(std::move(script)), out_(out) {}

void ScriptFrontEnd::log(std::string_view html) {
  out_ << logText(html) << '\n' << std::flush;
}

void ScriptFrontEnd::refuse(const Answer& answer, const Dialog& dialog, const std::string& why) const {
  throw RunEnded{kExitBadInput, fmt::format("{}\"{}\" does not answer this dialog, which expects {}{}:\n{}",
                                            atLine(script_, answer.line), shown(answer), dialog.wanted,
                                            why.empty() ? "" : fmt::format(" ({})", why), dialog.text)};
}

const Answer& ScriptFrontEnd::take(const Dialog& dialog, std::initializer_list<AnswerKind> kinds) {
  if (next_ == script_.answers.size())
    throw RunEnded{kExitBadInput, fmt::format("{}: no answer is left for this dialog, which expects {}:\n{}",
                                              script_.path, dialog.wanted, dialog.text)};
  const Answer& answer = script_.answers[next_];
  if (std::find(kinds.begin(), kinds.end(), answer.kind) == kinds.end()) refuse(answer, dialog);
  ++next_;
  return answer;
}

void ScriptFrontEnd::showMessage(const std::string& html) {
  const Dialog dialog{"\"message\" with a part of the text", dialogText(html)};
  const Answer& answer = take(dialog, {AnswerKind::kMessage});
  if (dialog.text.find(answer.value) == std::string::npos && html.find(answer.value) == std::string::npos)
    refuse(answer, dialog);
}

bool ScriptFrontEnd::askYesNo(const std::string& html) {
  const Dialog dialog{"\"yes\" or \"no\"", dialogText(html)};
  return take(dialog, {AnswerKind::kYes, AnswerKind::kNo, AnswerKind::kCancel}).kind == AnswerKind::kYes;
}

template <typename Value, typename Question>
std::optional<Value> ScriptFrontEnd::askWithinLimits(const Question& question, AnswerKind kind) {
  const Dialog dialog{fmt::format("\"{}\" with {}", tagOf(kind), requirement(question)),
                      dialogText(question.html)};
  const Answer& answer = take(dialog, {kind, AnswerKind::kCancel});
  if (answer.kind == AnswerKind::kCancel) return std::nullopt;
  const std::optional<Value> value = accepted(question, answer.value);
  if (!value) refuse(answer, dialog);
  return value;
}

std::optional<int> ScriptFrontEnd::askInteger(const IntegerQuestion& question) {
  return askWithinLimits<int>(question, AnswerKind::kInteger);
}

std::optional<float> ScriptFrontEnd::askNumber(const NumberQuestion& question) {
  return askWithinLimits<float>(question, AnswerKind::kFloat);
}

std::optional<std::string> ScriptFrontEnd::askText(const TextQuestion& question) {
  const Dialog dialog{fmt::format("\"text\" with at most {} bytes", question.maxBytes),
                      dialogText(question.html)};
  const Answer& answer = take(dialog, {AnswerKind::kText, AnswerKind::kCancel});
  if (answer.kind == AnswerKind::kCancel) return std::nullopt;
  if (answer.value.size() > question.maxBytes) refuse(answer, dialog);
  return answer.value;
}

template <typename Problem>
std::optional<std::string> ScriptFrontEnd::askPath(const FileQuestion& question, AnswerKind kind,
                                                   Problem problem) {
  const Dialog dialog{fmt::format("\"{}\" with a file name", tagOf(kind)), dialogText(question.title)};
  const Answer& answer = take(dialog, {kind, AnswerKind::kCancel});
  if (answer.kind == AnswerKind::kCancel) return std::nullopt;
  std::string path = resolvedPath(script_.folder, answer.value);
  const std::string why = problem(question, path);
  if (!why.empty()) refuse(answer, dialog, why);
  return path;
}

std::optional<std::string> ScriptFrontEnd::askFileToOpen(const FileQuestion& question) {
  return askPath(question, AnswerKind::kOpen, problemWithFileToOpen);
}

std::optional<std::string> ScriptFrontEnd::askFileToSave(const FileQuestion& question) {
  return askPath(question, AnswerKind::kSave, problemWithFileToSave);
}

std::string ScriptFrontEnd::finish() {
  const std::size_t left = script_.answers.size() - next_;
  if (left == 0) return {};
  const Answer& first = script_.answers[next_];
  return fmt::format("{}{}{} not asked for, beginning with \"{}\"", atLine(script_, first.line), left,
                     left == 1 ? " answer was" : " answers were", shown(first));
}

}  // namespace host
