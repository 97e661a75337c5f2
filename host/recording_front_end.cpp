#include "host/recording_front_end.h"

#include <fmt/core.h>

#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "host/answer_parsing.h"
#include "host/html_text.h"
#include "host/run_ended.h"

namespace host {
namespace {

namespace fs = std::filesystem;

std::string valueText(int value) {
  return std::to_string(value);
}
std::string valueText(float value) {
  return decimalText(value);
}
std::string valueText(const std::string& value) {
  return value;
}

// A part of a message box's text that a script can name: its longest line.
std::string partOf(const std::string& html) {
  std::string longest;
  std::istringstream lines(dialogText(html));
  for (std::string line; std::getline(lines, line);)
    if (trimmed(line).size() > longest.size()) longest = trimmed(line);
  return longest;
}

void requireNewFile(const std::string& path) {
  std::error_code ignored;
  if (fs::exists(path, ignored))
    throw RunEnded{kExitBadInput,
                   fmt::format("{} is there already, perhaps with the answers of an earlier session. "
                               "Give --record another name, or remove the file.",
                               path)};
  const fs::path folder = fs::absolute(path).parent_path();
  if (!fs::is_directory(folder, ignored))
    throw RunEnded{kExitBadInput,
                   fmt::format("There is no folder {} for the answers. Check --record.", folder.string())};
}

}  // namespace

RecordingFrontEnd::RecordingFrontEnd(std::unique_ptr<FrontEnd> answering, std::string path)
    : answering_(std::move(answering)),
      path_(std::move(path)),
      text_("# Answers of a session of tavmap host.\n") {
  requireNewFile(path_);
}

// A file that cannot be written does not end the session, for which it was to be kept.
void RecordingFrontEnd::record(AnswerKind kind, const std::string& value) {
  text_ += scriptLine(kind, value) + "\n";
  try {
    formats::writeTextFile(path_, text_, formats::Durability::kCached);
    problem_.clear();
  } catch (const formats::FileError& error) {
    if (problem_.empty())
      answering_->log(fmt::format("WARNING: The answers cannot be recorded: {}", error.what()));
    problem_ = fmt::format("The answers could not be recorded: {}", error.what());
  }
}

template <typename Value>
const std::optional<Value>& RecordingFrontEnd::recorded(AnswerKind kind, const std::optional<Value>& answer) {
  if (answer)
    record(kind, valueText(*answer));
  else
    record(AnswerKind::kCancel);
  return answer;
}

void RecordingFrontEnd::showMessage(const std::string& html) {
  answering_->showMessage(html);
  record(AnswerKind::kMessage, partOf(html));
}

bool RecordingFrontEnd::askYesNo(const std::string& html) {
  const bool yes = answering_->askYesNo(html);
  record(yes ? AnswerKind::kYes : AnswerKind::kNo);
  return yes;
}

std::optional<int> RecordingFrontEnd::askInteger(const IntegerQuestion& question) {
  return recorded(AnswerKind::kInteger, answering_->askInteger(question));
}

std::optional<float> RecordingFrontEnd::askNumber(const NumberQuestion& question) {
  return recorded(AnswerKind::kFloat, answering_->askNumber(question));
}

std::optional<std::string> RecordingFrontEnd::askText(const TextQuestion& question) {
  return recorded(AnswerKind::kText, answering_->askText(question));
}

std::optional<std::string> RecordingFrontEnd::askFileToOpen(const FileQuestion& question) {
  return recorded(AnswerKind::kOpen, answering_->askFileToOpen(question));
}

std::optional<std::string> RecordingFrontEnd::askFileToSave(const FileQuestion& question) {
  return recorded(AnswerKind::kSave, answering_->askFileToSave(question));
}

std::string RecordingFrontEnd::finish() {
  const std::string left = answering_->finish();
  return left.empty() ? problem_ : left;
}

}  // namespace host
