// The whole set-up, and the definition of conditions.
#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"

namespace {

// So that the first file of the run fixes the geometry of all.
void forgetGeometry(tav::TAV_Pars& pars) {
  pars.vtcXStart = pars.vtcXEnd = -1;
  pars.vtcYStart = pars.vtcYEnd = -1;
  pars.vtcZStart = pars.vtcZEnd = -1;
  pars.vtcResolution = pars.vtcMaxNrOfVolumes = -1;
}

int askIntervalMethod() {
  return zqGetIntegerInput(
      "<b>Interval selection</b><br>How do you want to select the vtc-intervals (conditions) used to compute "
      "the "
      "TAVs?<br><br><b>Choose an option:</b><br>1. Manually specify a single interval per VTC<br>2. Specify "
      "a "
      "condition from a loaded protocol (.prt) for every VTC to define the intervals",
      1, 1, 2);
}

bool hasCondition(const tav::TAV_Pars& pars, const std::string& name) {
  return std::any_of(pars.conds.begin(), pars.conds.end(),
                     [&name](const tav::TAV_Cond_Pars& cond) { return cond.name == name; });
}

}  // namespace

int TAVPlugin::tavGetParametersFromUser(tav::TAV_Pars& pars, VOIs_Header& vois) {
  forgetGeometry(pars);
  int status = tavGetVOIParametersFromUser(pars, vois);
  if (status != tav::kSuccess) return status;
  const int method = askIntervalMethod();
  if (method < 1) return tav::kCancelled;
  if (logUserSelections) tavLogText("\nSelected condition structure:\n");
  status = addConditions(pars, method);
  if (status != tav::kSuccess) return status;
  const auto prefix = askSaveFile("Choose path and name-prefix for results:");
  if (!prefix) return tav::kCancelled;
  pars.resultPathPrefix = *prefix;
  return tav::kSuccess;
}

int TAVPlugin::addConditions(tav::TAV_Pars& pars, int method) {
  while (true) {
    const auto name = askText(
        "<b>Add a Condition</b><br> Give a name for a set of intervals (Condition) used to compute TAVs over "
        "(or "
        "press OK while empty to stop adding):");
    if (!name) return tav::kCancelled;
    if (name->empty()) {
      if (!pars.conds.empty()) return tav::kSuccess;
      refuseSelection("You have select at least one Condition. Try again after closing this dialog");
      continue;
    }
    if (hasCondition(pars, *name)) {
      refuseSelection(
          "You have already selected that condition-name. Try again after closing this messagebox.");
      continue;
    }
    const int status = addCondition(pars, *name, method);
    if (status != tav::kSuccess) return status;
  }
}

int TAVPlugin::addCondition(tav::TAV_Pars& pars, const std::string& name, int method) {
  tav::TAV_Cond_Pars& cond = pars.conds.emplace_back();
  cond.name = name;
  if (logUserSelections) tavLogText("<b>" + name + "</b>");
  return pars.separateSrcTrgVtcs ? tavGetVtcPairsForConditionFromUser(pars, cond, method)
                                 : tavGetVtcsForConditionFromUser(pars, cond, method);
}
