// The choice of reference regions from the host's VOI list.
#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"

namespace {

std::string voiMenu(int nrOfVois) {
  std::string menu =
      "<b>Welcome to the TAV-Plugin</b><br><br><b>Select VOIs</b><br>Each TAV is computed with respect to a "
      "selectable reference region (VOI). You can select multiple VOIs to compute multiple TAVs in one run "
      "of the "
      "TAV-plugin.<br><br><b>Add a VOI as a reference region:</b><br>0. <i>Stop selecting</i><br>";
  for (int i = 0; i < nrOfVois; ++i) {
    VOI_Header header{};
    zqGetVOI(i, &header);
    menu += std::to_string(i + 1) + ". " + textOf(header.name) + "<br>";
  }
  return menu + std::to_string(nrOfVois + 1) + ". <i>Add all</i>";
}

tav::TAV_VOI_Pars fetchVoi(const VOIs_Header& vois, int index) {
  VOI_Header header{};
  const std::int32_t* voxels = zqGetVOI(index, &header);
  return {textOf(header.name), index, header.nrOfVoxels, voxels, vois.talCoords};
}

}  // namespace

int TAVPlugin::tavGetVOIParametersFromUser(tav::TAV_Pars& pars, const VOIs_Header& vois) {
  const std::string menu = voiMenu(vois.nrOfVOIs);
  const int addAll = vois.nrOfVOIs + 1;
  if (logUserSelections) tavLogText("Selected VOI's:\n");
  while (true) {
    const int choice = zqGetIntegerInput(menu.c_str(), 1, 0, addAll);
    if (choice < 0) return tav::kCancelled;
    if (choice == addAll) break;
    if (choice > 0) {
      addVoi(pars, vois, choice - 1);
    } else if (!pars.vois.empty()) {
      return tav::kSuccess;
    } else {
      refuseSelection("You have select at least one VOI. Try again after closing this dialog");
    }
  }
  pars.vois.clear();  // single choices made before: every VOI once, in the list's order
  for (int i = 0; i < vois.nrOfVOIs; ++i) pars.vois.push_back(fetchVoi(vois, i));
  if (logUserSelections) tavLogText("Added <b>ALL</b> (other) VOI's in current VOI-list");
  return tav::kSuccess;
}

void TAVPlugin::addVoi(tav::TAV_Pars& pars, const VOIs_Header& vois, int index) {
  const auto isIndex = [index](const tav::TAV_VOI_Pars& voi) { return voi.voiIndex == index; };
  if (std::any_of(pars.vois.begin(), pars.vois.end(), isIndex)) {
    refuseSelection("You have already selected that VOI. Try again after closing this messagebox.");
    return;
  }
  pars.vois.push_back(fetchVoi(vois, index));
  if (logUserSelections) tavLogText("<b>" + pars.vois.back().name + "</b>");
}
