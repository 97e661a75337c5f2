// The plug-in's lines in the host's log pane.
#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "tav/tav_defs.h"

namespace {

constexpr const char* kPrompt = "// TAV> ";
constexpr const char* kStars = "//****************************************************************";

}  // namespace

void TAVPlugin::tavLogText(const std::string& text) {
  std::string prompted = kPrompt;
  for (const char c : text) {
    prompted += c;
    if (c == '\n') prompted += kPrompt;
  }
  zqLogText(prompted.c_str());
}

// The banners carry no prompt.
void TAVPlugin::writeBanner() {
  const std::string stars = kStars;
  zqLogText(("\n" + stars).c_str());
  zqLogText("//  T A V M A P   M A P P I N G                 ");
  zqLogText((std::string("//  <b>TAV</b> -  CNZQ Plugin Version ") + tav::VERSION_STRING).c_str());
  zqLogText("//  The TAV Help Pages (via 'Description of Plugins...')");
  zqLogText((stars + "\n").c_str());
}

void TAVPlugin::tavExit() {
  const std::string stars = kStars;
  zqLogText(("\n" + stars).c_str());
  zqLogText("//  End TAV-Plugin output");
  zqLogText((stars + "\n").c_str());
}
