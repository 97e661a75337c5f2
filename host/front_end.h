// What shows a plug-in's dialogs and log to a person, or stands in for the person. The host calls
// it from the thread on which the plug-in runs; every call returns when the dialog is closed.
//
// Texts are HTML fragments as the plug-in gave them. An empty optional is a cancelled dialog. An
// answer is within the question's limits: a front end asks again, or ends the run by throwing
// RunEnded, rather than hand on a bad one.
#ifndef TAVMAP_HOST_FRONT_END_H
#define TAVMAP_HOST_FRONT_END_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace host {

struct IntegerQuestion {
  std::string html;
  int initial, min, max;  // min <= initial <= max
  int volumes = 0;        // of the run that the question is about; 0: unknown
};

struct NumberQuestion {
  std::string html;
  float initial, min, max;
};

struct TextQuestion {
  std::string html;
  std::string initial;
  std::size_t maxBytes;  // longest answer, without a terminating zero
};

struct FileQuestion {
  std::string title;
  std::string folder;  // where to start; may be empty
  std::string filter;  // such as "Protocol Files (*.prt)"; may be empty
  std::size_t maxBytes;
};

class FrontEnd {
 public:
  virtual ~FrontEnd() = default;

  // Appends to the log pane; `html` is one line or several, without the final line end.
  virtual void log(std::string_view html) = 0;

  virtual void showMessage(const std::string& html) = 0;
  virtual bool askYesNo(const std::string& html) = 0;  // cancelled: no
  virtual std::optional<int> askInteger(const IntegerQuestion& question) = 0;
  virtual std::optional<float> askNumber(const NumberQuestion& question) = 0;
  virtual std::optional<std::string> askText(const TextQuestion& question) = 0;

  // Both answer with an absolute path.
  virtual std::optional<std::string> askFileToOpen(const FileQuestion& question) = 0;
  virtual std::optional<std::string> askFileToSave(const FileQuestion& question) = 0;

  virtual void setBusy(bool busy) = 0;

  // A map set has been written, under its absolute path.
  virtual void showSavedMaps(const std::string& path) { static_cast<void>(path); }

  // Called once when the plug-in has returned: what is left to complain about, or nothing.
  virtual std::string finish() = 0;
};

}  // namespace host

#endif
