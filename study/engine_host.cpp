#include "study/engine_host.h"

#include <charconv>

#include "host/exports.h"
#include "host/run_ended.h"
#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "study/problem.h"

namespace study {

// Listens to the log and refuses to answer: the engine has no questions.
class EngineHost::Ears : public host::FrontEnd {
 public:
  explicit Ears(std::function<void(int)> percent) : percent_(std::move(percent)) {}

  void log(std::string_view html) override {
    const int value = percentIn(html);
    if (value >= 0 && percent_) percent_(value);
    if (host::reportsFailure(html)) complaints_ += (complaints_.empty() ? "" : "; ") + std::string(html);
  }
  void showMessage(const std::string& html) override { refuse(html); }
  bool askYesNo(const std::string& html) override { refuse(html); }
  std::optional<int> askInteger(const host::IntegerQuestion& question) override { refuse(question.html); }
  std::optional<float> askNumber(const host::NumberQuestion& question) override { refuse(question.html); }
  std::optional<std::string> askText(const host::TextQuestion& question) override { refuse(question.html); }
  std::optional<std::string> askFileToOpen(const host::FileQuestion& question) override { refuse(question.title); }
  std::optional<std::string> askFileToSave(const host::FileQuestion& question) override { refuse(question.title); }
  void setBusy(bool) override {}
  std::string finish() override { return ""; }

  const std::string& complaints() const { return complaints_; }

 private:
  [[noreturn]] static void refuse(const std::string& question) {
    throw RunError("the engine asked a question where nobody can answer: " + question);
  }
  std::function<void(int)> percent_;
  std::string complaints_;
};

int percentIn(std::string_view logLine) {
  const std::size_t sign = logLine.rfind("%...");
  const std::size_t tab = logLine.rfind('\t');
  if (sign == std::string_view::npos || tab == std::string_view::npos || tab > sign) return -1;
  int value = -1;
  const auto [end, error] = std::from_chars(logLine.data() + tab + 1, logLine.data() + sign, value);
  return error == std::errc() && end == logLine.data() + sign ? value : -1;
}

EngineHost::EngineHost(const std::filesystem::path& image, const std::filesystem::path& vtc,
                       std::function<void(int)> percent)
    : ears_(std::make_unique<Ears>(std::move(percent))),
      logPane_(*ears_, false),
      run_(workspace_, *ears_, logPane_, identity_) {
  workspace_.openAnatomy(image.string());
  workspace_.linkVtc(vtc.string());
  if (host::exportedOperations().empty() || !InitZQAccess()) {
    throw RunError("this program does not export the host's operations; it was linked wrongly");
  }
}

EngineHost::~EngineHost() = default;

std::string EngineHost::complaints() const { return ears_->complaints(); }

}  // namespace study
