// One run, from the checks of the workspace to the closing banner.
#include <fstream>
#include <sstream>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"
#include "plugin/host_store.h"
#include "tav/ini_file.h"
#include "tav/tav.h"

namespace {

constexpr const char* kTerminalErrorText = "Terminal error, sorry. Exiting...";

bool hasVmr() {
  int dimX = 0;
  int dimY = 0;
  int dimZ = 0;
  if (zqGetCurrentVMR(&dimX, &dimY, &dimZ) != 0) return true;
  zqMessageBox(
      "<b>No VMR</b><br>The TAV-plugin requires a VMR to operate. Make sure that a VMR is open and that its "
      "window "
      "is selected.");
  return false;
}

bool hasLinkedVtc() {
  VTC_Header header{};
  zqGetVTCOfCurrentVMR(&header);
  if (header.dataOffset != -1) return true;
  zqMessageBox(
      "<b>No VTC</b><br>The TAV-plugin requires a referenced VTC to correctly access VOI-definitions.\n Make "
      "sure "
      "that a VTC is linked.");
  return false;
}

bool hasVois(VOIs_Header& vois) {
  zqGetVOIs(&vois);
  if (vois.nrOfVOIs > 0) return true;
  zqMessageBox(
      "<b>No VOI file</b><br>The TAV-plugin requires definitions of VOIs to operate.\n Make sure that an "
      "appropriate "
      "VOI-file is loaded (Shift+R after closing this message).");
  return false;
}

}  // namespace

bool TAVPlugin::execute() {
  VOIs_Header vois{};
  if (!hasVmr() || !hasLinkedVtc() || !hasVois(vois)) return false;
  zqShowLogTab();
  writeBanner();

  std::ostringstream messages;
  tav::TAV_Pars pars;
  const std::string settingsPath = pluginsFolder() + "/TAVPlugin.ini";
  std::ifstream settings(settingsPath);
  readSettings(settings, settingsPath, pars, messages);

  tavLogText("Running. Waiting for user selections...\n");
  const int status = tavGetParametersFromUser(pars, vois);
  if (logUserSelections) tavLogText("");
  if (status == tav::kSuccess) return compute(pars, messages);

  if (status == tav::kCancelled) tavLogText("Canceled by user.");
  if (status == tav::kTerminalError) tavLogText(kTerminalErrorText);
  tavExit();
  return false;
}

// Settings read before the first bad line stay, deliberately: the written logs show what was used.
// The messages are not cleared either, so a computation that fails repeats them.
void TAVPlugin::readSettings(std::istream& file, const std::string& path, tav::TAV_Pars& pars,
                             std::ostringstream& messages) {
  if (!file) {
    tavLogText("WARNING: Could not find or open " + path);
  } else if (tav::loadINIFile(file, pars, messages)) {
    return;
  } else {
    tavLogText("WARNING: " + messages.str());
  }
  tavLogText("WARNING: Dismissing .ini-file: it was invalid or could not be found");
  tavLogText("WARNING: Using default global parameters, see written .log files\n");
}

// The busy cursor goes before the message of a success and after those of a failure.
bool TAVPlugin::compute(const tav::TAV_Pars& pars, std::ostringstream& messages) {
  zqShowBusyCursor();
  tavLogText("Computing...");
  HostStore store;
  HostLog log;
  tav::Computer computer({}, &log, &store);
  const int status = computer.computeTAVs(pars, messages);
  if (status == tav::kSuccess) {
    zqStopBusyCursor();
    tavLogText("\nDone, all computations succesful");
    tavExit();
    return true;
  }
  if (status == tav::kInvalidParameters) {
    explainFailure(
        messages.str(),
        "An invalid input parameter-set caused computation to terminate.\nTry again with a different "
        "parameter-set. Exiting...");
  }
  if (status == tav::kTerminalError) explainFailure(messages.str(), kTerminalErrorText);
  zqStopBusyCursor();
  tavExit();
  return false;
}

void TAVPlugin::explainFailure(const std::string& messages, const std::string& conclusion) {
  tavLogText("");
  tavLogText(messages);
  tavLogText(conclusion);
}
