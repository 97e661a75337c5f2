// Progress of a study on a terminal: one line with a bar and an estimate of the time left. On
// anything else than a terminal a plain line per finished piece. Nothing but failures when quiet.
#ifndef TAVMAP_STUDY_PROGRESS_BAR_H
#define TAVMAP_STUDY_PROGRESS_BAR_H

#include <chrono>
#include <optional>
#include <ostream>
#include <string>

#include "study/worker_channel.h"
#include "study/worker_pool.h"

namespace study {

enum class ProgressStyle { kQuiet, kLines, kBar };

// What suits standard error.
[[nodiscard]] ProgressStyle progressStyle(bool quiet);

class ProgressBar : public PoolWatcher {
 public:
  // Borrows the stream. Clears its line when it ends.
  ProgressBar(std::ostream& stream, ProgressStyle style);
  ~ProgressBar() override;

  void onProgress(double doneWeight, double totalWeight) override;
  void onFinished(const WorkPiece& piece, const WorkOutcome& outcome) override;
  // Sends progress to a pipe as well, as worker_channel.h says: for programs, which cannot read a bar.
  void reportTo(int descriptor) { channel_.emplace(descriptor); }
  // Writes a line of its own above the bar, whatever the style: "FAILED: " and what.
  void fail(const std::string& what);

 private:
  void say(const std::string& line);
  void clearLine();
  void report(double fraction);
  std::ostream& stream_;
  ProgressStyle style_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::string shown_;
  std::optional<WorkerChannel> channel_;
  double reported_ = -1;
};

// None in the first two percent, and at the end.
[[nodiscard]] std::optional<double> secondsLeft(double fraction, double elapsedSeconds);
// "[#####.....]  50 %, 1 min 05 s left"; no estimate in the first two percent.
[[nodiscard]] std::string progressLine(double fraction, double elapsedSeconds);
// "45 s", "1 min 05 s", "2 h 03 min".
[[nodiscard]] std::string durationText(double seconds);

}  // namespace study

#endif
