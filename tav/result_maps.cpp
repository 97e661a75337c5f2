#include "tav/result_maps.h"

#include <algorithm>
#include <cstdio>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "tav/log_pane.h"
#include "tav/save_text.h"
#include "tav/tav.h"

namespace tav {
namespace {

constexpr std::size_t kBaseNameBytes = 512;

NR_VMPs_Header mapSetHeader(const TAV_Pars& pars) {
  NR_VMPs_Header header{};
  header.nrOfMaps = nrOfMapsOf(pars);
  header.nrOfFDRThresholds = static_cast<std::int32_t>(pars.qThresholds.size());
  header.xStart = pars.vtcXStart;
  header.xEnd = pars.vtcXEnd;
  header.yStart = pars.vtcYStart;
  header.yEnd = pars.vtcYEnd;
  header.zStart = pars.vtcZStart;
  header.zEnd = pars.vtcZEnd;
  header.resolution = pars.vtcResolution;
  return header;
}

// The names keep the order of the settings although thresholds come by ascending q, deliberately.
void nameThresholds(const TAV_Pars& pars, const NR_VMPs_Header& header) {
  for (std::size_t i = 0; i < pars.qThresholds.size(); ++i) {
    std::snprintf(header.fdrThresholdNames[i], kThresholdNameBytes, "thres q=%1.3f",
                  static_cast<double>(pars.qThresholds[i]));
  }
}

void saveLog(const std::string& path, const std::string& text) {
  const std::string reason = saveTextWhole(path, text);
  if (reason.empty()) {
    zqLogText((std::string(TAV_PROMPT) + " Written  log: " + path).c_str());
  } else {
    zqLogText((std::string(TAV_PROMPT) + " WARNING: Could not write the log " + path + " (" + reason +
               "). Check the folder and the free space, then repeat the run.")
                  .c_str());
  }
}

// Time courses are looked up by name, so equal names share the first one's as well.
void warnOfEqualNames(const TAV_Pars& pars, const TAV_VOI_Pars& a, const TAV_VOI_Pars& b) {
  std::string text = std::string(TAV_PROMPT) + " WARNING: VOI " + std::to_string(a.voiIndex + 1) + " '" +
                     a.name + "' and VOI " + std::to_string(b.voiIndex + 1) + " '" + b.name +
                     "' share the result files " + resultBaseName(pars, a) + ".tav and .log";
  text += a.name == b.name ? " and the time course of the first" : "";
  zqLogText((text + ": the later results replace the earlier ones. Rename one of the two.").c_str());
}

}  // namespace

int nrOfMapsOf(const TAV_Pars& pars) {
  return static_cast<int>(pars.conds.size() * pars.mapTypes.size());
}

std::string resultBaseName(const TAV_Pars& pars, const TAV_VOI_Pars& voi) {
  std::string name = voi.name;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '_');
  char base[kBaseNameBytes];
  std::snprintf(base, sizeof base, "%s_%s", pars.resultPathPrefix.c_str(), name.c_str());
  return base;
}

void warnOfEqualResultNames(const TAV_Pars& pars) {
  for (auto a = pars.vois.begin(); a != pars.vois.end(); ++a) {
    for (auto b = a + 1; b != pars.vois.end(); ++b) {
      if (resultBaseName(pars, *a) == resultBaseName(pars, *b)) warnOfEqualNames(pars, *a, *b);
    }
  }
}

int Computer::createVOIResultMAP(const TAV_VOI_Pars& /*voi*/, const TAV_Pars& request, std::ostream& errors) {
  zqDeleteNRVMPsOfCurrentVMR();
  NR_VMPs_Header header = mapSetHeader(request);
  if (header.nrOfMaps < 1) {
    errors << "An invalid number of maps have to be computed: " << header.nrOfMaps
           << "Number of conditions, and/or number of map types were possibly invalid";
    return kInvalidParameters;
  }
  if (zqCreateNRVMPsForCurrentVMR(header.nrOfMaps, 0, header.nrOfFDRThresholds, &header) == 0) {
    errors << "Could not create an CMP map-structure to write TAV results";
    return kTerminalError;
  }
  if (zqGetNRVMPsOfCurrentVMR(&header) == 0) {
    errors << "Could not get access to created CMP map-structure for write TAV results";
    return kTerminalError;
  }
  nameThresholds(request, header);
  return kSuccess;
}

int Computer::saveVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request, std::ostringstream& log,
                               std::ostream& /*errors*/) {
  const std::string base = resultBaseName(request, voi);
  zqSaveNRVMPsOfCurrentVMR((base + ".tav").c_str());  // the host reports its own failures
  zqLogText((std::string(TAV_PROMPT) + "\n" + TAV_PROMPT + " Written data: " + base + ".tav").c_str());
  saveLog(base + ".log", log.str());
  return kSuccess;
}

}  // namespace tav
