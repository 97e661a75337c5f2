// A plug-in's dialogs in a page. Texts reach it as the terminal shows them: plain, without the plug-in's
// markup.
#ifndef TAVMAP_WORKBENCH_PAGE_FRONT_END_H
#define TAVMAP_WORKBENCH_PAGE_FRONT_END_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/front_end.h"
#include "workbench/folder_guard.h"
#include "workbench/page_dialogs.h"

namespace workbench {

class PageFrontEnd : public host::FrontEnd {
 public:
  // Draws every map of a map set and returns the paths of the pictures. May throw formats::FileError.
  using Draw = std::function<std::vector<std::string>(const std::string& mapSet)>;

  // Borrows the first two. Files are answered as {"folder", "path"} of the guard's folders, and only from
  // there.
  PageFrontEnd(PageDialogs& dialogs, const FolderGuard& folders, Draw draw)
      : dialogs_(dialogs), folders_(folders), draw_(std::move(draw)) {}

  void log(std::string_view html) override;
  void showMessage(const std::string& html) override;
  bool askYesNo(const std::string& html) override;
  std::optional<int> askInteger(const host::IntegerQuestion& question) override;
  std::optional<float> askNumber(const host::NumberQuestion& question) override;
  std::optional<std::string> askText(const host::TextQuestion& question) override;
  std::optional<std::string> askFileToOpen(const host::FileQuestion& question) override;
  std::optional<std::string> askFileToSave(const host::FileQuestion& question) override;
  void setBusy(bool busy) override { dialogs_.setBusy(busy); }
  void showSavedMaps(const std::string& path) override;
  std::string finish() override { return {}; }

 private:
  using Json = PageDialogs::Json;
  [[nodiscard]] Json fileJson(const char* kind, const host::FileQuestion& question) const;

  PageDialogs& dialogs_;
  const FolderGuard& folders_;
  Draw draw_;
};

}  // namespace workbench

#endif
