#include "host/terminal_front_end.h"

#include <fmt/core.h>

#include <filesystem>
#include <istream>
#include <ostream>

#include "host/answer_parsing.h"
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

}  // namespace

void TerminalFrontEnd::log(std::string_view html) {
  out_ << logText(html) << '\n' << std::flush;
}

void TerminalFrontEnd::show(const std::string& text) {
  out_ << '\n' << kRule << '\n' << wrapped(text, kColumns) << "\n\n";
}

bool TerminalFrontEnd::readLine(std::string& line) {
  out_ << std::flush;
  inputEnded_ = !std::getline(in_, line);
  if (inputEnded_) in_.clear();  // Ctrl-D in a terminal ends one line, not the session
  if (inputEnded_) out_ << '\n';
  if (!inputEnded_ && echo_) out_ << line << '\n';
  return !inputEnded_;
}

std::optional<std::string> TerminalFrontEnd::answer(const std::string& asked, const std::string& prompt) {
  const bool endedBefore = inputEnded_;
  out_ << prompt << ": ";
  std::string line;
  if (!readLine(line)) {
    if (endedBefore) throw RunEnded{kExitFailed, "The input has ended, and the plug-in asks:\n" + asked};
    return std::nullopt;
  }
  line = trimmed(line);
  if (line == "quit") throw RunEnded{kExitFailed, "Ended by \"quit\"."};
  if (line == "cancel") return std::nullopt;
  if (line == "\\quit" || line == "\\cancel") line.erase(0, 1);
  return line;
}

void TerminalFrontEnd::showMessage(const std::string& html) {
  show(dialogText(html));
  out_ << "Press Enter to go on: ";
  std::string line;
  if (readLine(line) && trimmed(line) == "quit") throw RunEnded{kExitFailed, "Ended by \"quit\"."};
}

bool TerminalFrontEnd::askYesNo(const std::string& html) {
  const std::string text = dialogText(html);
  show(text);
  for (;;) {
    const std::optional<std::string> line = answer(text, "yes or no");
    if (!line || saysNo(*line)) return false;
    if (saysYes(*line)) return true;
    out_ << "Type yes or no.\n";
  }
}

template <typename Value, typename Question>
std::optional<Value> TerminalFrontEnd::askWithinLimits(const Question& question, const std::string& initial) {
  const std::string text = dialogText(question.html);
  const std::string prompt = fmt::format("Number, {} [{}]", rangeText(question), initial);
  show(text);
  for (;;) {
    const std::optional<std::string> line = answer(text, prompt);
    if (!line) return std::nullopt;
    if (line->empty()) return question.initial;
    if (const std::optional<Value> value = accepted(question, *line)) return value;
    out_ << "Please type " << requirement(question) << ", or cancel.\n";
  }
}

std::optional<int> TerminalFrontEnd::askInteger(const IntegerQuestion& question) {
  return askWithinLimits<int>(question, std::to_string(question.initial));
}

std::optional<float> TerminalFrontEnd::askNumber(const NumberQuestion& question) {
  return askWithinLimits<float>(question, decimalText(question.initial));
}

std::optional<std::string> TerminalFrontEnd::askText(const TextQuestion& question) {
  const std::string text = dialogText(question.html);
  show(text);
  for (;;) {
    std::optional<std::string> line =
        answer(text, question.initial.empty() ? "Text" : fmt::format("Text [{}]", question.initial));
    if (!line) return std::nullopt;
    if (line->empty()) return question.initial;
    if (line->size() <= question.maxBytes) return line;
    out_ << "At most " << question.maxBytes << " bytes, please.\n";
  }
}

template <typename Problem>
std::optional<std::string> TerminalFrontEnd::askPath(const FileQuestion& question, const std::string& prompt,
                                                     Problem problem) {
  const std::string text = dialogText(question.title);
  show(question.filter.empty() ? text : fmt::format("{}\n{}", text, question.filter));
  for (;;) {
    const std::optional<std::string> line = answer(text, prompt);
    if (!line) return std::nullopt;
    if (line->empty()) continue;
    const std::filesystem::path folder = question.folder.empty() ? "." : question.folder;
    const std::string path = resolvedPath(folder, *line);
    const std::string why = problem(question, path);
    if (why.empty()) return path;
    out_ << "Not possible: " << why << '\n';
  }
}

std::optional<std::string> TerminalFrontEnd::askFileToOpen(const FileQuestion& question) {
  return askPath(question, "File to open", problemWithFileToOpen);
}

std::optional<std::string> TerminalFrontEnd::askFileToSave(const FileQuestion& question) {
  return askPath(question, "File to save", problemWithFileToSave);
}

}  // namespace host
