#include "tav/result_maps.h"

#include <algorithm>
#include <cstdio>

#include "tav/tav.h"

namespace tav {
namespace {

constexpr std::size_t kBaseNameBytes = 512;

// The names keep the order of the settings although thresholds come by ascending q, deliberately.
std::string thresholdName(float q) {
  char name[64];
  std::snprintf(name, sizeof name, "thres q=%1.3f", static_cast<double>(q));
  return name;
}

MapSetShape mapSetShape(const TAV_Pars& pars) {
  MapSetShape shape{nrOfMapsOf(pars),
                    {pars.vtcXStart, pars.vtcXEnd, pars.vtcYStart, pars.vtcYEnd, pars.vtcZStart, pars.vtcZEnd,
                     pars.vtcResolution},
                    {}};
  for (const float q : pars.qThresholds) shape.thresholdNames.push_back(thresholdName(q));
  return shape;
}

// Time courses are looked up by name, so equal names share the first one's as well.
void warnOfEqualNames(const TAV_Pars& pars, const TAV_VOI_Pars& a, const TAV_VOI_Pars& b, const RunLog& log) {
  std::string text = std::string(TAV_PROMPT) + " WARNING: VOI " + std::to_string(a.voiIndex + 1) + " '" +
                     a.name + "' and VOI " + std::to_string(b.voiIndex + 1) + " '" + b.name +
                     "' share the result files " + resultBaseName(pars, a) + ".tav and .log";
  text += a.name == b.name ? " and the time course of the first" : "";
  log.text(text + ": the later results replace the earlier ones. Rename one of the two.");
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

void warnOfEqualResultNames(const TAV_Pars& pars, const RunLog& log) {
  for (auto a = pars.vois.begin(); a != pars.vois.end(); ++a) {
    for (auto b = a + 1; b != pars.vois.end(); ++b) {
      if (resultBaseName(pars, *a) == resultBaseName(pars, *b)) warnOfEqualNames(pars, *a, *b, log);
    }
  }
}

int Computer::createVOIResultMAP(const TAV_VOI_Pars& /*voi*/, const TAV_Pars& request, std::ostream& errors) {
  store_->discard();
  const MapSetShape shape = mapSetShape(request);
  if (shape.nrOfMaps < 1) {
    errors << "An invalid number of maps have to be computed: " << shape.nrOfMaps
           << "Number of conditions, and/or number of map types were possibly invalid";
    return kInvalidParameters;
  }
  return store_->create(shape, errors) ? kSuccess : kTerminalError;
}

int Computer::saveVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request, std::ostringstream& log,
                               std::ostream& /*errors*/) {
  const std::string base = resultBaseName(request, voi), prompt = TAV_PROMPT;
  store_->saveMaps(base + ".tav");
  runLog_.text(prompt + "\n" + prompt + " Written data: " + base + ".tav");
  const std::string path = base + ".log", reason = store_->saveLog(path, log.str());
  runLog_.text(reason.empty() ? prompt + " Written  log: " + path
                              : prompt + " WARNING: Could not write the log " + path + " (" + reason +
                                    "). Check the folder and the free space, then repeat the run.");
  return kSuccess;
}

}  // namespace tav
