// One complete run, in the order in which the host and the user see it.
#include <fstream>
#include <sstream>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/text_buffer.h"
#include "tav/ini_file.h"
#include "tav/tav.h"

namespace {

void writeBanner() {
  zqShowLogTab();
  zqLogText("\n//****************************************************************");
  zqLogText("//  T A V M A P   M A P P I N G                 ");
  zqLogText((std::string("//  <b>TAV</b> -  CNZQ Plugin Version ") + tav::VERSION_STRING).c_str());
  zqLogText("//  The TAV Help Pages (via 'Description of Plugins...')");
  zqLogText("//****************************************************************\n");
}

}  // namespace

// The first missing thing ends the run with its message box; the log stays untouched.
bool TAVPlugin::hostIsReady(VOIs_Header& vois) {
  int dimX = 0, dimY = 0, dimZ = 0;
  if (zqGetCurrentVMR(&dimX, &dimY, &dimZ) == 0) {
    zqMessageBox(
        "<b>No VMR</b><br>The TAV-plugin requires a VMR to operate. Make sure that a VMR is open and that its "
        "window is selected.");
    return false;
  }
  VTC_Header vtc = {};
  zqGetVTCOfCurrentVMR(&vtc);
  if (vtc.dataOffset == -1) {
    zqMessageBox(
        "<b>No VTC</b><br>The TAV-plugin requires a referenced VTC to correctly access VOI-definitions.\n Make "
        "sure that a VTC is linked.");
    return false;
  }
  zqGetVOIs(&vois);
  if (vois.nrOfVOIs <= 0) {
    zqMessageBox(
        "<b>No VOI file</b><br>The TAV-plugin requires definitions of VOIs to operate.\n Make sure that an "
        "appropriate VOI-file is loaded (Shift+R after closing this message).");
    return false;
  }
  return true;
}

// A bad settings file costs warnings only. Fields that it set before its first error keep their
// values, and the sink keeps its text, which a later failure shows again.
void TAVPlugin::readSettings(tav::TAV_Pars& pars, std::ostringstream& sink) {
  TextBuffer folder;
  zqGetPluginsPath(folder.data());
  const std::string path = folder.text() + "/TAVPlugin.ini";
  std::ifstream file(path);
  if (!file) {
    tavLogText("WARNING: Could not find or open " + path);
  } else if (tav::loadINIFile(file, pars, sink)) {
    return;
  } else {
    tavLogText("WARNING: " + sink.str());
  }
  tavLogText("WARNING: Dismissing .ini-file: it was invalid or could not be found");
  tavLogText("WARNING: Using default global parameters, see written .log files\n");
}

bool TAVPlugin::execute() {
  VOIs_Header vois = {};
  if (!hostIsReady(vois)) return false;

  writeBanner();
  std::ostringstream sink;
  tav::TAV_Pars pars;
  readSettings(pars, sink);

  tavLogText("Running. Waiting for user selections...\n");
  const int status = tavGetParametersFromUser(pars, vois);
  if (logUserSelections) tavLogText("");
  if (status == tav::kSuccess) return compute(pars, sink);

  if (status == tav::kCancelled) tavLogText("Canceled by user.");
  if (status == tav::kTerminalError) tavLogText("Terminal error, sorry. Exiting...");
  tavExit();
  return false;
}

bool TAVPlugin::compute(const tav::TAV_Pars& pars, std::ostringstream& sink) {
  zqShowBusyCursor();
  tavLogText("Computing...");
  tav::Computer computer;
  switch (computer.computeTAVs(pars, sink)) {
    case tav::kSuccess:
      // The cursor stops before the good news and after the bad ones.
      zqStopBusyCursor();
      tavLogText("\nDone, all computations succesful");
      tavExit();
      return true;
    case tav::kInvalidParameters:
      return reportFailure(
          "An invalid input parameter-set caused computation to terminate.\nTry again with a different "
          "parameter-set. Exiting...",
          sink);
    case tav::kTerminalError:
      return reportFailure("Terminal error, sorry. Exiting...", sink);
    default:
      zqStopBusyCursor();
      tavExit();
      return false;
  }
}

bool TAVPlugin::reportFailure(const std::string& lastLine, const std::ostringstream& sink) {
  tavLogText("");
  tavLogText(sink.str());
  tavLogText(lastLine);
  zqStopBusyCursor();
  tavExit();
  return false;
}
