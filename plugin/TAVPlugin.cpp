#include "plugin/TAVPlugin.h"

#include "hostapi/CNZQPluginInterfaceExtern.h"

bool TAVPlugin::initPlugin() {
  if (!InitZQAccess()) return false;
  int major = 0, minor = 0, patch = 0;
  zqGetVersionOfCorvaneZQ(&major, &minor, &patch);
  if (checkVersionGreaterEqualVersion(major, minor, patch, 2, 1, 0)) return true;
  zqMessageBox("Sorry, can not execute the TAV plugin - CorvaneZQ version 2.1.0 or higher required.");
  return false;
}

void TAVPlugin::tavLogText(const std::string& text) {
  static const std::string prompt = "// TAV> ";
  std::string lines = prompt;
  for (const char c : text) {
    lines += c;
    if (c == '\n') lines += prompt;
  }
  zqLogText(lines.c_str());
}

void TAVPlugin::tavExit() {
  zqLogText("\n//****************************************************************");
  zqLogText("//  End TAV-Plugin output");
  zqLogText("//****************************************************************\n");
}
