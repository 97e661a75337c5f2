// Answers dialogs from a script. It never guesses: a dialog that the next answer does not fit, an
// answer out of range and a message box that was not announced end the run (bad input) with the
// dialog's text.
#ifndef TAVMAP_HOST_SCRIPT_FRONT_END_H
#define TAVMAP_HOST_SCRIPT_FRONT_END_H

#include <initializer_list>
#include <iosfwd>

#include "host/front_end.h"
#include "host/script.h"

namespace host {

class ScriptFrontEnd : public FrontEnd {
 public:
  // The log pane is written to `out`, which must outlive the front end.
  ScriptFrontEnd(Script script, std::ostream& out);

  void log(std::string_view html) override;
  void showMessage(const std::string& html) override;
  bool askYesNo(const std::string& html) override;
  std::optional<int> askInteger(const IntegerQuestion& question) override;
  std::optional<float> askNumber(const NumberQuestion& question) override;
  std::optional<std::string> askText(const TextQuestion& question) override;
  std::optional<std::string> askFileToOpen(const FileQuestion& question) override;
  std::optional<std::string> askFileToSave(const FileQuestion& question) override;
  void setBusy(bool) override {}
  std::string finish() override;  // names the answers that no dialog asked for

 private:
  struct Dialog {
    std::string wanted;  // "a whole number from 1 to 3"
    std::string text;
  };
  // The next answer, which must be of one of these kinds.
  const Answer& take(const Dialog& dialog, std::initializer_list<AnswerKind> kinds);
  [[noreturn]] void refuse(const Answer& answer, const Dialog& dialog, const std::string& why = {}) const;
  template <typename Value, typename Question>
  std::optional<Value> askWithinLimits(const Question& question, AnswerKind kind);
  template <typename Problem>
  std::optional<std::string> askPath(const FileQuestion& question, AnswerKind kind, Problem problem);

  Script script_;
  std::size_t next_ = 0;
  std::ostream& out_;
};

}  // namespace host

#endif
