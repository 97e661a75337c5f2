// The choice of the files of a condition, single VTCs or pairs of source and target.
#include <algorithm>

#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"

namespace {

constexpr const char* kVtcFilter = "Volume Time Course Files (*.vtc)";
constexpr int kTypedIntervals = 1;
constexpr int kProtocolIntervals = 2;

bool hasSet(const tav::TAV_Cond_Pars& cond, const std::string& source, const std::string& target) {
  return std::any_of(cond.vtcIntvSets.begin(), cond.vtcIntvSets.end(), [&](const tav::TAV_VTC_intv_set& set) {
    return set.srcVtcName == source && set.trgVtcName == target;
  });
}

tav::TAV_VTC_intv_set setOf(const std::string& source, const std::string& target) {
  tav::TAV_VTC_intv_set set;
  set.srcVtcName = source;
  set.trgVtcName = target;
  return set;
}

}  // namespace

int TAVPlugin::tavGetVtcsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method) {
  const std::string prompt = "Add a VTC for condition: " + cond.name + " (cancel to stop adding)";
  while (true) {
    const auto path = askOpenFile(prompt, kVtcFilter);
    if (!path) {
      if (!cond.vtcIntvSets.empty()) return tav::kSuccess;
      refuseSelection(
          "You have select at least one VTC and an interval within that VTC. Try again after closing this "
          "dialog");
    } else if (hasSet(cond, *path, *path)) {
      refuseSelection(
          "You have already selected that VTC for this condition. Try again after closing this messagebox.");
    } else if (!checkVTC(pars, *path)) {
      refuseSelection(
          "Either could not open vtc or the selected vtc is not of the same dimensions as previously "
          "selected ones. "
          "Resolution (3mm, 2mm, or 1mm) and reference space (un-transformed, ACPC, or TAL) must be the same "
          "for all "
          "VTCs.");
    } else {
      if (logUserSelections) tavLogText("\t" + *path);
      const int status = addVtcSet(pars, cond, setOf(*path, *path), method);
      if (status != tav::kSuccess) return status;
    }
  }
}

int TAVPlugin::tavGetVtcPairsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method) {
  const std::string sourcePrompt =
      "Add a SOURCE VTC (reference) for condition: " + cond.name + " (cancel to stop adding)";
  const std::string targetPrompt =
      "Add a TARGET VTC (voxels) for condition: " + cond.name + " (mandatory, cancel only to exit)";
  while (true) {
    const auto source = askOpenFile(sourcePrompt, kVtcFilter);
    if (!source) {
      if (!cond.vtcIntvSets.empty()) return tav::kSuccess;
      refuseSelection(
          "You have select at least one VTC-Pair (source and target) and an interval within those VTCs. Try "
          "again "
          "after closing this dialog");
      continue;
    }
    const auto target = askOpenFile(targetPrompt, kVtcFilter);
    if (!target) return tav::kCancelled;
    const int status = addVtcPair(pars, cond, setOf(*source, *target), method);
    if (status != tav::kSuccess) return status;
  }
}

// A refused pair is a success too: the user is asked again.
int TAVPlugin::addVtcPair(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, const tav::TAV_VTC_intv_set& pair,
                          int method) {
  if (hasSet(cond, pair.srcVtcName, pair.trgVtcName)) {
    refuseSelection(
        "You have already selected that source-target VTC-pair for this condition. Try again after closing "
        "this "
        "messagebox.");
    return tav::kSuccess;
  }
  if (!checkVTC(pars, pair.srcVtcName) || !checkVTC(pars, pair.trgVtcName)) {
    refuseSelection(
        "Either could not open (one of) the (source or target) vtcs or (one of) the selected vtc is not of "
        "the same "
        "dimensions as previously selected ones. Resolution (3mm, 2mm, or 1mm) and reference space "
        "(un-transformed, "
        "ACPC, or TAL) must be the same for all VTCs.");
    return tav::kSuccess;
  }
  if (logUserSelections) tavLogText("\tsrc: " + pair.srcVtcName + "\n\ttrg: " + pair.trgVtcName);
  return addVtcSet(pars, cond, pair, method);
}

// The set stays in the condition even when its intervals are cancelled.
int TAVPlugin::addVtcSet(const tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond,
                         const tav::TAV_VTC_intv_set& set, int method) {
  tav::TAV_VTC_intv_set& added = cond.vtcIntvSets.emplace_back(set);
  const char* name = set.srcVtcName.c_str();
  if (method == kTypedIntervals) return tavGetVtcBeginEndFromUser(&added, name, pars.arOrder);
  if (method == kProtocolIntervals) return tavGetVtcIntvsFromUser(&added, name, pars.arOrder);
  tavLogText("ERROR: Unknown VTC interval specification method");
  return tav::kTerminalError;
}
