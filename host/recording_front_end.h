// Writes down what another front end answers, as an answer script that gives the same answers again. The file
// is replaced as a whole after every answer, so that it holds them all however the session ends.
#ifndef TAVMAP_HOST_RECORDING_FRONT_END_H
#define TAVMAP_HOST_RECORDING_FRONT_END_H

#include <memory>

#include "host/front_end.h"
#include "host/script.h"

namespace host {

class RecordingFrontEnd : public FrontEnd {
 public:
  // Throws RunEnded (bad input) when the file is there already or its folder is not.
  RecordingFrontEnd(std::unique_ptr<FrontEnd> answering, std::string path);

  void log(std::string_view html) override { answering_->log(html); }
  void showMessage(const std::string& html) override;
  bool askYesNo(const std::string& html) override;
  std::optional<int> askInteger(const IntegerQuestion& question) override;
  std::optional<float> askNumber(const NumberQuestion& question) override;
  std::optional<std::string> askText(const TextQuestion& question) override;
  std::optional<std::string> askFileToOpen(const FileQuestion& question) override;
  std::optional<std::string> askFileToSave(const FileQuestion& question) override;
  void setBusy(bool busy) override { answering_->setBusy(busy); }
  void showSavedMaps(const std::string& path) override { answering_->showSavedMaps(path); }
  std::string finish() override;  // also when the answers could not be written

 private:
  void record(AnswerKind kind, const std::string& value = {});
  template <typename Value>
  const std::optional<Value>& recorded(AnswerKind kind, const std::optional<Value>& answer);

  std::unique_ptr<FrontEnd> answering_;
  std::string path_, text_, problem_;
};

}  // namespace host

#endif
