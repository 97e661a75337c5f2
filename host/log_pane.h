// The log pane: every line that the plug-in or the host logs, shown by the front end and written,
// as plain text, into a log file when one was asked for.
//
// A plug-in has no way to tell the host that a result could not be written: it says so in the
// log. By the host's convention a line that begins (after a prompt of the form "// NAME> ") with
// "ERROR: ", "ERROR : " or "WARNING: Could not write" makes the run count as failed, whatever the
// plug-in returns. Other warnings do not.
#ifndef TAVMAP_HOST_LOG_PANE_H
#define TAVMAP_HOST_LOG_PANE_H

#include <fstream>
#include <string>
#include <string_view>

#include "host/front_end.h"

namespace host {

class LogPane {
 public:
  // `frontEnd` must outlive the pane; with `quiet` it is shown nothing.
  LogPane(FrontEnd& frontEnd, bool quiet) : frontEnd_(frontEnd), quiet_(quiet) {}

  // Writes the log into a file as well, replacing it. Throws RunEnded (bad input) when it cannot
  // be created.
  void writeTo(const std::string& path);

  // Appends one block of text, HTML fragments allowed, without the final line end.
  void append(std::string_view html);

  [[nodiscard]] bool reportedFailure() const { return reportedFailure_; }

  // False when a log file was asked for and could not be written to the end.
  [[nodiscard]] bool close();

 private:
  FrontEnd& frontEnd_;
  bool quiet_;
  bool reportedFailure_ = false;
  std::ofstream file_;
};

// True for a line that marks the run as failed.
[[nodiscard]] bool reportsFailure(std::string_view line);

}  // namespace host

#endif
