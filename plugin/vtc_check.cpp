// Keeps all VTCs of a run on one grid.
#include <algorithm>
#include <cstdio>

#include "io/cnvtcfile.h"
#include "plugin/TAVPlugin.h"

namespace {

// Takes the value when the run has none yet; false when it differs from the one it has.
bool takeOrCompare(int& ofRun, int ofFile) {
  if (ofRun == -1) ofRun = ofFile;
  return ofRun == ofFile;
}

bool readHeader(const std::string& path, VTC_Header& header) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  if (!readVTCHeader(file, header)) return false;  // known: the file stays open
  std::fclose(file);
  return true;
}

}  // namespace

bool TAVPlugin::checkVTC(tav::TAV_Pars& pars, std::string path) {
  VTC_Header header = {};
  if (!readHeader(path, header) || !hasUsableGeometry(header)) return false;
  const bool fits = takeOrCompare(pars.vtcXStart, header.xStart) && takeOrCompare(pars.vtcXEnd, header.xEnd) &&
                    takeOrCompare(pars.vtcYStart, header.yStart) && takeOrCompare(pars.vtcYEnd, header.yEnd) &&
                    takeOrCompare(pars.vtcZStart, header.zStart) && takeOrCompare(pars.vtcZEnd, header.zEnd) &&
                    takeOrCompare(pars.vtcResolution, header.resolution);
  if (!fits) return false;
  pars.vtcMaxNrOfVolumes = std::max(pars.vtcMaxNrOfVolumes, header.nrOfVolumes);
  return true;
}
