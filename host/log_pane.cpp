#include "host/log_pane.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>

#include "host/html_text.h"
#include "host/run_ended.h"

namespace host {
namespace {

constexpr std::array<std::string_view, 3> kFailures = {"ERROR: ", "ERROR : ", "WARNING: Could not write"};

// "// TAV> text" without its prompt, and without blanks and tabs before the text.
std::string_view withoutPrompt(std::string_view line) {
  const std::size_t end = line.find("> ");
  const bool prompted = line.substr(0, 3) == "// " && end != std::string_view::npos &&
                        line.substr(3, end - 3).find(' ') == std::string_view::npos;
  if (prompted) line.remove_prefix(end + 2);
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return line;
}

}  // namespace

bool reportsFailure(std::string_view line) {
  line = withoutPrompt(line);
  for (std::string_view beginning : kFailures)
    if (line.substr(0, beginning.size()) == beginning) return true;
  return false;
}

void LogPane::writeTo(const std::string& path) {
  file_.open(path, std::ios::binary | std::ios::trunc);
  if (!file_)
    throw RunEnded{
        kExitBadInput,
        fmt::format("Cannot write the log file {}: check that its folder exists and is writable.", path)};
}

void LogPane::append(std::string_view html) {
  if (!quiet_) frontEnd_.log(html);
  if (file_.is_open()) file_ << logText(html) << '\n' << std::flush;
  while (!html.empty()) {
    const std::size_t end = html.find('\n');
    reportedFailure_ = reportedFailure_ || reportsFailure(html.substr(0, end));
    html.remove_prefix(end == std::string_view::npos ? html.size() : end + 1);
  }
}

bool LogPane::close() {
  if (!file_.is_open()) return true;
  file_.close();
  return !file_.fail();
}

}  // namespace host
