// Which VOIs of the host's list are reference regions.
#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"

namespace {

std::string voiMenu(int nrOfVois) {
  std::string menu =
      "<b>Welcome to the TAV-Plugin</b><br><br><b>Select VOIs</b><br>Each TAV is computed with respect to a "
      "selectable reference region (VOI). You can select multiple VOIs to compute multiple TAVs in one run of "
      "the TAV-plugin.<br><br><b>Add a VOI as a reference region:</b><br>0. <i>Stop selecting</i><br>";
  for (int i = 0; i < nrOfVois; ++i) {
    VOI_Header voi = {};
    zqGetVOI(i, &voi);
    menu += std::to_string(i + 1) + ". " + voi.name + "<br>";
  }
  return menu + std::to_string(nrOfVois + 1) + ". <i>Add all</i>";
}

bool isChosen(const tav::TAV_Pars& pars, int index) {
  return std::any_of(pars.vois.begin(), pars.vois.end(),
                     [index](const tav::TAV_VOI_Pars& voi) { return voi.voiIndex == index; });
}

}  // namespace

void TAVPlugin::addVoi(tav::TAV_Pars& pars, const VOIs_Header& vois, int index) {
  VOI_Header header = {};
  const int* voxels = zqGetVOI(index, &header);
  pars.vois.push_back({header.name, index, header.nrOfVoxels, voxels, vois.talCoords});
}

void TAVPlugin::addAllVois(tav::TAV_Pars& pars, const VOIs_Header& vois) {
  pars.vois.clear();
  for (int i = 0; i < vois.nrOfVOIs; ++i) addVoi(pars, vois, i);
  if (logUserSelections) tavLogText("Added <b>ALL</b> (other) VOI's in current VOI-list");
}

int TAVPlugin::tavGetVOIParametersFromUser(tav::TAV_Pars& pars, const VOIs_Header& vois) {
  const std::string menu = voiMenu(vois.nrOfVOIs);
  const int addAll = vois.nrOfVOIs + 1;
  if (logUserSelections) tavLogText("Selected VOI's:\n");
  for (;;) {
    const int choice = zqGetIntegerInput(menu.c_str(), 1, 0, addAll);
    if (choice < 0) return tav::kCancelled;
    if (choice == addAll) {
      addAllVois(pars, vois);
      return tav::kSuccess;
    }
    if (choice == 0) {
      if (!pars.vois.empty()) return tav::kSuccess;
      zqMessageBox(
          "<b>Invalid selection</b><br>You have select at least one VOI. Try again after closing this dialog");
    } else if (isChosen(pars, choice - 1)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>You have already selected that VOI. Try again after closing this "
          "messagebox.");
    } else {
      addVoi(pars, vois, choice - 1);
      if (logUserSelections) tavLogText("<b>" + pars.vois.back().name + "</b>");
    }
  }
}
