// A person at a terminal: every dialog is a block of text and a line of input.
//
// Enter takes the value in brackets. "cancel" or Ctrl-D cancels a dialog, "quit" ends the run; a
// text that is one of these words is typed with a backslash before it. Answers out of range are
// asked for again. An entry of a list is answered by its number, its name or a part of the name that no other
// has. Relative paths start at the working folder. When the input ends for good, the
// first question is cancelled and the next one ends the run, since a plug-in may repeat a
// cancelled dialog for ever.
//
// A person, not a pipe, is asked once more before a dialog is cancelled that does not say what "cancel" does
// there: plug-ins end their session then. A volume beyond the run's is pointed out to both, and a person may
// take it back.
#ifndef TAVMAP_HOST_TERMINAL_FRONT_END_H
#define TAVMAP_HOST_TERMINAL_FRONT_END_H

#include <iosfwd>
#include <memory>
#include <set>

#include "host/choice_list.h"
#include "host/front_end.h"
#include "host/line_reader.h"

namespace host {

struct TerminalOptions {
  bool person = false;  // somebody is there to be asked
  // Offered where a person is asked for such a file; as the person typed them. Empty: none.
  std::string vtc, protocol;
};

class TerminalFrontEnd : public FrontEnd {
 public:
  // Reads lines plainly. Both streams must outlive the front end; echo: see StreamLines.
  TerminalFrontEnd(std::istream& in, std::ostream& out, bool echo = false);
  TerminalFrontEnd(std::unique_ptr<LineReader> lines, std::ostream& out, TerminalOptions options);

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
  struct Dialog {
    std::string text, prompt;
    Completer completer = {};
  };
  void show(const std::string& text);
  bool readLine(const std::string& prompt, std::string& line, const Completer& completer = {});
  // A trimmed line; none when the dialog is cancelled.
  std::optional<std::string> lineFor(const Dialog& dialog);
  // The same, after a person has confirmed a cancel that may end the session.
  std::optional<std::string> answer(const Dialog& dialog);
  // yes unless a person says no; nothing typed means no, the end of the input yes.
  bool confirmed(const std::string& question);

  std::optional<int> numberOf(const IntegerQuestion& question, const std::vector<Choice>& choices,
                              const std::string& line);
  bool keepsVolume(const IntegerQuestion& question, const std::string& text, int volume);
  std::string defaultFor(const FileQuestion& question) const;
  template <typename Problem>
  std::optional<std::string> askPath(const FileQuestion& question, const std::string& prompt, Problem problem,
                                     const std::string& initial);

  std::unique_ptr<LineReader> lines_;
  std::ostream& out_;
  TerminalOptions options_;
  std::set<std::string> vtcOfferTaken_;  // titles of dialogs that the offered VTC has answered
  bool inputEnded_ = false;              // the last read met the end of the input
};

}  // namespace host

#endif
