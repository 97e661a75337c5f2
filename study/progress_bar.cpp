#include "study/progress_bar.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace study {
namespace {

constexpr int kBarCells = 30;
constexpr double kLeastForEstimate = 0.02;
constexpr double kLeastReported = 0.001;

std::string twoParts(long large, const char* largeUnit, long small, const char* smallUnit) {
  char text[64];
  std::snprintf(text, sizeof text, "%ld %s %02ld %s", large, largeUnit, small, smallUnit);
  return text;
}

}  // namespace

ProgressStyle progressStyle(bool quiet) {
  if (quiet) return ProgressStyle::kQuiet;
  return isatty(STDERR_FILENO) != 0 ? ProgressStyle::kBar : ProgressStyle::kLines;
}

std::string durationText(double seconds) {
  const long whole = std::lround(std::max(0.0, seconds));
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return twoParts(whole / 60, "min", whole % 60, "s");
  return twoParts(whole / 3600, "h", whole % 3600 / 60, "min");
}

std::optional<double> secondsLeft(double fraction, double elapsedSeconds) {
  if (fraction < kLeastForEstimate || fraction >= 1) return std::nullopt;
  return elapsedSeconds * (1 - fraction) / fraction;
}

std::string progressLine(double fraction, double elapsedSeconds) {
  fraction = std::clamp(fraction, 0.0, 1.0);
  const int filled = static_cast<int>(fraction * kBarCells);
  std::string line = fmt::format("[{}{}] ", std::string(static_cast<std::size_t>(filled), '#'),
                                 std::string(static_cast<std::size_t>(kBarCells - filled), '.'));
  char percent[16];
  std::snprintf(percent, sizeof percent, "%3d %%", static_cast<int>(fraction * 100));
  line += percent;
  if (const std::optional<double> left = secondsLeft(fraction, elapsedSeconds))
    line += fmt::format(", {} left", durationText(*left));
  return line;
}

ProgressBar::ProgressBar(std::ostream& stream, ProgressStyle style) : stream_(stream), style_(style) {}
ProgressBar::~ProgressBar() {
  clearLine();
}

void ProgressBar::clearLine() {
  if (shown_.empty()) return;
  stream_ << "\r\033[K" << std::flush;
  shown_.clear();
}

// Steps that nobody sees would only fill the pipe.
void ProgressBar::report(double fraction) {
  if (!channel_ || std::abs(fraction - reported_) < kLeastReported) return;
  reported_ = fraction;
  channel_->progress(fraction);
}

void ProgressBar::onProgress(double doneWeight, double totalWeight) {
  report(totalWeight > 0 ? std::clamp(doneWeight / totalWeight, 0.0, 1.0) : 0);
  if (style_ != ProgressStyle::kBar) return;
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  const std::string line = progressLine(totalWeight > 0 ? doneWeight / totalWeight : 0, elapsed.count());
  if (line == shown_) return;
  stream_ << "\r\033[K" << line << std::flush;
  shown_ = line;
}

void ProgressBar::onFinished(const WorkPiece& piece, const WorkOutcome& outcome) {
  if (outcome.done && style_ == ProgressStyle::kLines) say("done: " + piece.name);
  if (outcome.done || !piece.isTriedInParts || style_ == ProgressStyle::kQuiet) return;
  say(fmt::format("tried again one by one: {}: {}", piece.name, outcome.message));
}

void ProgressBar::fail(const std::string& what) {
  say("FAILED: " + what);
}

void ProgressBar::say(const std::string& line) {
  clearLine();
  stream_ << line << std::endl;
}

}  // namespace study
