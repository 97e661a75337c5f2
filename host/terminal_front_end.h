// A person at a terminal: every dialog is a block of text and a line of input.
//
// Enter takes the value in brackets. "cancel" or Ctrl-D cancels a dialog, "quit" ends the run; a
// text that is one of these words is typed with a backslash before it. Answers out of range are
// asked for again. Relative paths start at the working folder. When the input ends for good, the
// first question is cancelled and the next one ends the run, since a plug-in may repeat a
// cancelled dialog for ever.
#ifndef TAVMAP_HOST_TERMINAL_FRONT_END_H
#define TAVMAP_HOST_TERMINAL_FRONT_END_H

#include <iosfwd>

#include "host/front_end.h"

namespace host {

class TerminalFrontEnd : public FrontEnd {
 public:
  // Both streams must outlive the front end. With `echo` every line read is written as well: for
  // input that comes from a pipe or file, so that what is shown reads as it would at a terminal.
  TerminalFrontEnd(std::istream& in, std::ostream& out, bool echo = false)
      : in_(in), out_(out), echo_(echo) {}

  void log(std::string_view html) override;
  void showMessage(const std::string& html) override;
  bool askYesNo(const std::string& html) override;
  std::optional<int> askInteger(const IntegerQuestion& question) override;
  std::optional<float> askNumber(const NumberQuestion& question) override;
  std::optional<std::string> askText(const TextQuestion& question) override;
  std::optional<std::string> askFileToOpen(const FileQuestion& question) override;
  std::optional<std::string> askFileToSave(const FileQuestion& question) override;
  void setBusy(bool) override {}
  std::string finish() override { return {}; }

 private:
  void show(const std::string& text);
  bool readLine(std::string& line);
  // A trimmed line after `prompt`; none when the dialog is cancelled.
  std::optional<std::string> answer(const std::string& asked, const std::string& prompt);
  template <typename Value, typename Question>
  std::optional<Value> askWithinLimits(const Question& question, const std::string& initial);
  template <typename Problem>
  std::optional<std::string> askPath(const FileQuestion& question, const std::string& prompt,
                                     Problem problem);

  std::istream& in_;
  std::ostream& out_;
  bool echo_;
  bool inputEnded_ = false;  // the last read met the end of the input
};

}  // namespace host

#endif
