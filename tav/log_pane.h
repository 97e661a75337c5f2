// The engine's lines in the host's log pane.
#ifndef TAVMAP_TAV_LOG_PANE_H
#define TAVMAP_TAV_LOG_PANE_H

#include <cstddef>
#include <cstdio>

#include "hostapi/CNZQPluginInterfaceExtern.h"

namespace tav {

// Formats a line into a buffer of `Size` bytes, deliberately cut there, and logs it.
template <std::size_t Size, typename... Arguments>
void logLine(const char* format, Arguments... arguments) {
  char line[Size];
  std::snprintf(line, Size, format, arguments...);
  zqLogText(line);
}

}  // namespace tav

#endif
