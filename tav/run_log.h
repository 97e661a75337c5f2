// The lines and the progress of a run, on their way to whoever listens.
#ifndef TAVMAP_TAV_RUN_LOG_H
#define TAVMAP_TAV_RUN_LOG_H

#include <cstddef>
#include <cstdio>
#include <string>

#include "tav/run_observer.h"

namespace tav {

class RunLog {
 public:
  // `observer` may be null; otherwise it must outlive the log.
  explicit RunLog(RunObserver* observer = nullptr) : observer_(observer) {}

  void text(const std::string& text) const {
    if (observer_ != nullptr) observer_->onLog(text);
  }

  // Formats into a buffer of `Size` bytes; the text is deliberately cut there.
  template <std::size_t Size, typename... Arguments>
  void line(const char* format, Arguments... arguments) const {
    char buffer[Size];
    std::snprintf(buffer, Size, format, arguments...);
    text(buffer);
  }

  void progress(int percent) const {
    if (observer_ != nullptr) observer_->onProgress(percent);
  }

 private:
  RunObserver* observer_;
};

}  // namespace tav

#endif
