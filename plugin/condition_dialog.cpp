// The driver of the set-up: VOIs, interval method, conditions, output prefix.
#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/text_buffer.h"

namespace {

void forgetGeometry(tav::TAV_Pars& pars) {
  pars.vtcXStart = pars.vtcXEnd = pars.vtcYStart = pars.vtcYEnd = pars.vtcZStart = pars.vtcZEnd = -1;
  pars.vtcResolution = pars.vtcMaxNrOfVolumes = -1;
}

bool hasCondition(const tav::TAV_Pars& pars, const std::string& name) {
  return std::any_of(pars.conds.begin(), pars.conds.end(),
                     [&name](const tav::TAV_Cond_Pars& cond) { return cond.name == name; });
}

int askMethod() {
  return zqGetIntegerInput(
      "<b>Interval selection</b><br>How do you want to select the vtc-intervals (conditions) used to compute the "
      "TAVs?<br><br><b>Choose an option:</b><br>1. Manually specify a single interval per VTC<br>2. Specify a "
      "condition from a loaded protocol (.prt) for every VTC to define the intervals",
      1, 1, 2);
}

// False on cancel.
bool askConditionName(std::string& name) {
  TextBuffer answer;
  const int answered = zqGetTextInput(
      "<b>Add a Condition</b><br> Give a name for a set of intervals (Condition) used to compute TAVs over (or "
      "press OK while empty to stop adding):",
      "", answer.data());
  name = answer.text();
  return answered != 0;
}

int askOutputPrefix(tav::TAV_Pars& pars) {
  TextBuffer prefix;
  if (zqGetSaveFileName("Choose path and name-prefix for results:", "", "", prefix.data()) == 0) {
    return tav::kCancelled;
  }
  pars.resultPathPrefix = prefix.text();
  return tav::kSuccess;
}

}  // namespace

int TAVPlugin::tavGetParametersFromUser(tav::TAV_Pars& pars, VOIs_Header& vois) {
  forgetGeometry(pars);
  const int voiStatus = tavGetVOIParametersFromUser(pars, vois);
  if (voiStatus != tav::kSuccess) return voiStatus;

  const int method = askMethod();
  if (method < 1) return tav::kCancelled;
  if (logUserSelections) tavLogText("\nSelected condition structure:\n");

  const int conditionStatus = askConditions(pars, method);
  if (conditionStatus != tav::kSuccess) return conditionStatus;
  return askOutputPrefix(pars);
}

int TAVPlugin::askConditions(tav::TAV_Pars& pars, int method) {
  for (;;) {
    std::string name;
    if (!askConditionName(name)) return tav::kCancelled;
    if (name.empty()) {
      if (!pars.conds.empty()) return tav::kSuccess;
      zqMessageBox(
          "<b>Invalid selection</b><br>You have select at least one Condition. Try again after closing this "
          "dialog");
    } else if (hasCondition(pars, name)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>You have already selected that condition-name. Try again after closing "
          "this messagebox.");
    } else {
      const int status = addCondition(pars, name, method);
      if (status != tav::kSuccess) return status;
    }
  }
}

int TAVPlugin::addCondition(tav::TAV_Pars& pars, const std::string& name, int method) {
  pars.conds.push_back({name, {}});
  if (logUserSelections) tavLogText("<b>" + name + "</b>");
  tav::TAV_Cond_Pars& cond = pars.conds.back();
  return pars.separateSrcTrgVtcs ? tavGetVtcPairsForConditionFromUser(pars, cond, method)
                                 : tavGetVtcsForConditionFromUser(pars, cond, method);
}
