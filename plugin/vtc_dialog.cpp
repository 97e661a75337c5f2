// The VTCs of one condition, singly or in source/target pairs.
#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/text_buffer.h"

namespace {

constexpr const char* kVtcFilter = "Volume Time Course Files (*.vtc)";

// False on cancel.
bool askVtc(const std::string& title, std::string& path) {
  TextBuffer answer;
  if (zqGetOpenFileName(title.c_str(), "", kVtcFilter, answer.data()) == 0) return false;
  path = answer.text();
  return true;
}

bool hasSet(const tav::TAV_Cond_Pars& cond, const std::string& source, const std::string& target) {
  return std::any_of(cond.vtcIntvSets.begin(), cond.vtcIntvSets.end(), [&](const tav::TAV_VTC_intv_set& set) {
    return set.srcVtcName == source && set.trgVtcName == target;
  });
}

}  // namespace

int TAVPlugin::tavGetVtcsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method) {
  const std::string title = "Add a VTC for condition: " + cond.name + " (cancel to stop adding)";
  for (;;) {
    std::string path;
    if (!askVtc(title, path)) {
      if (!cond.vtcIntvSets.empty()) return tav::kSuccess;
      zqMessageBox(
          "<b>Invalid selection</b><br>You have select at least one VTC and an interval within that VTC. Try "
          "again after closing this dialog");
    } else if (hasSet(cond, path, path)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>You have already selected that VTC for this condition. Try again after "
          "closing this messagebox.");
    } else if (!checkVTC(pars, path)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>Either could not open vtc or the selected vtc is not of the same "
          "dimensions as previously selected ones. Resolution (3mm, 2mm, or 1mm) and reference space "
          "(un-transformed, ACPC, or TAL) must be the same for all VTCs.");
    } else {
      const int status = addSet(pars, cond, path, path, method);
      if (status != tav::kSuccess) return status;
    }
  }
}

int TAVPlugin::tavGetVtcPairsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method) {
  const std::string sourceTitle =
      "Add a SOURCE VTC (reference) for condition: " + cond.name + " (cancel to stop adding)";
  const std::string targetTitle =
      "Add a TARGET VTC (voxels) for condition: " + cond.name + " (mandatory, cancel only to exit)";
  for (;;) {
    std::string source, target;
    if (!askVtc(sourceTitle, source)) {
      if (!cond.vtcIntvSets.empty()) return tav::kSuccess;
      zqMessageBox(
          "<b>Invalid selection</b><br>You have select at least one VTC-Pair (source and target) and an interval "
          "within those VTCs. Try again after closing this dialog");
      continue;
    }
    if (!askVtc(targetTitle, target)) return tav::kCancelled;
    if (hasSet(cond, source, target)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>You have already selected that source-target VTC-pair for this condition. "
          "Try again after closing this messagebox.");
    } else if (!checkVTC(pars, source) || !checkVTC(pars, target)) {
      zqMessageBox(
          "<b>Invalid selection</b><br>Either could not open (one of) the (source or target) vtcs or (one of) "
          "the selected vtc is not of the same dimensions as previously selected ones. Resolution (3mm, 2mm, or "
          "1mm) and reference space (un-transformed, ACPC, or TAL) must be the same for all VTCs.");
    } else {
      const int status = addSet(pars, cond, source, target, method);
      if (status != tav::kSuccess) return status;
    }
  }
}

int TAVPlugin::addSet(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, const std::string& source,
                      const std::string& target, int method) {
  cond.vtcIntvSets.push_back({source, target, {}});
  if (logUserSelections) {
    tavLogText(pars.separateSrcTrgVtcs ? "\tsrc: " + source + "\n\ttrg: " + target : "\t" + source);
  }
  tav::TAV_VTC_intv_set* set = &cond.vtcIntvSets.back();
  if (method == 1) return tavGetVtcBeginEndFromUser(set, source.c_str(), pars.arOrder);
  if (method == 2) return tavGetVtcIntvsFromUser(set, source.c_str(), pars.arOrder);
  tavLogText("ERROR: Unknown VTC interval specification method");
  return tav::kTerminalError;
}
