#include "host/terminal_front_end.h"

#include <fmt/core.h>

#include <filesystem>
#include <ostream>
#include <utility>

#include "host/answer_parsing.h"
#include "host/completion.h"
#include "host/file_checks.h"
#include "host/html_text.h"
#include "host/run_ended.h"
#include "host/text_layout.h"

namespace host {
namespace {

constexpr std::size_t kColumns = 78;
const std::string kRule(kColumns, '-');

bool saysYes(const std::string& answer) {
  return answer == "y" || answer == "yes";
}
bool saysNo(const std::string& answer) {
  return answer == "n" || answer == "no";
}

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

// "(cancel to stop adding)": the dialog itself says that cancelling it goes on with something else.
bool saysWhatCancelDoes(const std::string& text) {
  return contains(text, "cancel to ");
}

bool asksForAnInterval(const std::string& text) {
  return contains(text, "interval") && contains(text, "volume");
}

std::vector<std::string> namesOf(const std::vector<Choice>& choices) {
  std::vector<std::string> names;
  for (const Choice& choice : choices) names.push_back(choice.name);
  return names;
}

std::filesystem::path startOf(const FileQuestion& question) {
  return question.folder.empty() ? "." : question.folder;
}

std::string promptOf(const char* what, const std::string& initial) {
  return initial.empty() ? what : fmt::format("{} [{}]", what, initial);
}

}  // namespace

TerminalFrontEnd::TerminalFrontEnd(std::istream& in, std::ostream& out, bool echo)
    : TerminalFrontEnd(std::make_unique<StreamLines>(in, out, echo), out, {}) {}

TerminalFrontEnd::TerminalFrontEnd(std::unique_ptr<LineReader> lines, std::ostream& out,
                                   TerminalOptions options)
    : lines_(std::move(lines)), out_(out), options_(std::move(options)) {}

void TerminalFrontEnd::log(std::string_view html) {
  out_ << logText(html) << '\n' << std::flush;
}

void TerminalFrontEnd::show(const std::string& text) {
  out_ << '\n' << kRule << '\n' << wrapped(text, kColumns) << "\n\n";
}

bool TerminalFrontEnd::readLine(const std::string& prompt, std::string& line, const Completer& completer) {
  out_ << std::flush;
  inputEnded_ = !lines_->read(prompt + ": ", completer, line);
  return !inputEnded_;
}

std::optional<std::string> TerminalFrontEnd::lineFor(const Dialog& dialog) {
  const bool endedBefore = inputEnded_;
  std::string line;
  if (!readLine(dialog.prompt, line, dialog.completer)) {
    if (endedBefore)
      throw RunEnded{kExitFailed, "The input has ended, and the plug-in asks:\n" + dialog.text};
    return std::nullopt;
  }
  line = trimmed(line);
  if (line == "quit") throw RunEnded{kExitFailed, "Ended by \"quit\"."};
  if (line == "cancel") return std::nullopt;
  if (line == "\\quit" || line == "\\cancel") line.erase(0, 1);
  return line;
}

bool TerminalFrontEnd::confirmed(const std::string& question) {
  std::string line;
  while (options_.person && readLine(question + " yes or no [no]", line)) {
    line = trimmed(line);
    if (line == "quit") throw RunEnded{kExitFailed, "Ended by \"quit\"."};
    if (line.empty() || saysNo(line)) return false;
    if (saysYes(line)) return true;
    out_ << "Type yes or no.\n";
  }
  return true;
}

std::optional<std::string> TerminalFrontEnd::answer(const Dialog& dialog) {
  for (;;) {
    std::optional<std::string> line = lineFor(dialog);
    if (line || saysWhatCancelDoes(dialog.text)) return line;
    if (confirmed("Cancelling this dialog can end the session. Cancel it?")) return std::nullopt;
  }
}

void TerminalFrontEnd::showMessage(const std::string& html) {
  show(dialogText(html));
  std::string line;
  if (readLine("Press Enter to go on", line) && trimmed(line) == "quit")
    throw RunEnded{kExitFailed, "Ended by \"quit\"."};
}

bool TerminalFrontEnd::askYesNo(const std::string& html) {
  const std::string text = dialogText(html);
  show(text);
  for (;;) {
    const std::optional<std::string> line = lineFor({text, "yes or no"});
    if (!line || saysNo(*line)) return false;
    if (saysYes(*line)) return true;
    out_ << "Type yes or no.\n";
  }
}

// Says what is wrong with a line that stands for no number of the question.
std::optional<int> TerminalFrontEnd::numberOf(const IntegerQuestion& question,
                                              const std::vector<Choice>& choices, const std::string& line) {
  if (const std::optional<int> number = accepted(question, line)) return number;
  const std::vector<Choice> meant = meantBy(line, choices);
  if (meant.size() == 1) return meant.front().number;
  if (meant.size() > 1)
    out_ << fmt::format("\"{}\" may be {}. Please type more of the name, or the number.\n", line,
                        enumerated(meant));
  else
    out_ << fmt::format("Please type {}{}, or cancel.\n", requirement(question),
                        choices.empty() ? "" : ", or a name of the list or a part of it");
  return std::nullopt;
}

bool TerminalFrontEnd::keepsVolume(const IntegerQuestion& question, const std::string& text, int volume) {
  if (question.volumes < 1 || volume <= question.volumes || !asksForAnInterval(text)) return true;
  out_ << fmt::format("The run has {} volumes; {} lies beyond them.\n", question.volumes, volume);
  return confirmed(fmt::format("Take {} all the same?", volume));
}

std::optional<int> TerminalFrontEnd::askInteger(const IntegerQuestion& question) {
  const std::string text = dialogText(question.html);
  const std::vector<Choice> choices = choicesOf(question, text);
  const Dialog dialog{
      text,
      fmt::format("Number{}, {} [{}]", choices.empty() ? "" : " or name", rangeText(question),
                  question.initial),
      [names = namesOf(choices)](const std::string& typed) { return namesFrom(names, typed); }};
  show(text);
  for (;;) {
    const std::optional<std::string> line = answer(dialog);
    if (!line) return std::nullopt;
    const std::optional<int> number =
        line->empty() ? std::optional<int>(question.initial) : numberOf(question, choices, *line);
    if (number && keepsVolume(question, text, *number)) return number;
  }
}

std::optional<float> TerminalFrontEnd::askNumber(const NumberQuestion& question) {
  const std::string text = dialogText(question.html);
  const Dialog dialog{text,
                      fmt::format("Number, {} [{}]", rangeText(question), decimalText(question.initial))};
  show(text);
  for (;;) {
    const std::optional<std::string> line = answer(dialog);
    if (!line) return std::nullopt;
    if (line->empty()) return question.initial;
    if (const std::optional<float> value = accepted(question, *line)) return value;
    out_ << "Please type " << requirement(question) << ", or cancel.\n";
  }
}

std::optional<std::string> TerminalFrontEnd::askText(const TextQuestion& question) {
  const std::string text = dialogText(question.html);
  show(text);
  for (;;) {
    std::optional<std::string> line = answer({text, promptOf("Text", question.initial)});
    if (!line) return std::nullopt;
    if (line->empty()) return question.initial;
    if (line->size() <= question.maxBytes) return line;
    out_ << "At most " << question.maxBytes << " bytes, please.\n";
  }
}

// The VTC is offered until it was taken, once a dialog: that of a condition asks again and again.
std::string TerminalFrontEnd::defaultFor(const FileQuestion& question) const {
  if (!options_.person) return {};
  if (contains(question.filter, "*.prt")) return options_.protocol;
  return contains(question.filter, "*.vtc") && !vtcOfferTaken_.contains(question.title) ? options_.vtc : "";
}

template <typename Problem>
std::optional<std::string> TerminalFrontEnd::askPath(const FileQuestion& question, const std::string& prompt,
                                                     Problem problem, const std::string& initial) {
  const std::string text = dialogText(question.title);
  show(question.filter.empty() ? text : fmt::format("{}\n{}", text, question.filter));
  const std::filesystem::path start = startOf(question);
  const Dialog dialog{text, promptOf(prompt.c_str(), initial),
                      [start](const std::string& typed) { return pathsFrom(start, typed); }};
  for (;;) {
    const std::optional<std::string> line = answer(dialog);
    if (!line) return std::nullopt;
    if (line->empty() && initial.empty()) continue;
    // What the command line names starts at the working folder, wherever the dialog does.
    std::string path = line->empty() ? resolvedPath(".", initial) : resolvedPath(start, *line);
    const std::string why = problem(question, path);
    if (why.empty()) return path;
    out_ << "Not possible: " << why << '\n';
  }
}

std::optional<std::string> TerminalFrontEnd::askFileToOpen(const FileQuestion& question) {
  const std::string initial = defaultFor(question);
  const auto path = askPath(question, "File to open", problemWithFileToOpen, initial);
  if (path && !options_.vtc.empty() && *path == resolvedPath(".", options_.vtc))
    vtcOfferTaken_.insert(question.title);
  return path;
}

std::optional<std::string> TerminalFrontEnd::askFileToSave(const FileQuestion& question) {
  return askPath(question, "File to save", problemWithFileToSave, "");
}

}  // namespace host
