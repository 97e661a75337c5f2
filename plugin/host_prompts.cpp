#include "plugin/host_prompts.h"

#include "hostapi/CNZQPluginInterfaceExtern.h"

std::optional<std::string> askText(const std::string& prompt) {
  char text[kHostTextBytes] = {};
  if (zqGetTextInput(prompt.c_str(), "", text) == 0) return std::nullopt;
  return textOf(text);
}

std::optional<std::string> askOpenFile(const std::string& title, const std::string& filter) {
  char path[kHostTextBytes] = {};
  if (zqGetOpenFileName(title.c_str(), "", filter.c_str(), path) == 0) return std::nullopt;
  return textOf(path);
}

std::optional<std::string> askSaveFile(const std::string& title) {
  char path[kHostTextBytes] = {};
  if (zqGetSaveFileName(title.c_str(), "", "", path) == 0) return std::nullopt;
  return textOf(path);
}

void refuseSelection(const std::string& reason) {
  zqMessageBox(("<b>Invalid selection</b><br>" + reason).c_str());
}

std::string pluginsFolder() {
  char path[kHostTextBytes] = {};
  zqGetPluginsPath(path);
  return textOf(path);
}
