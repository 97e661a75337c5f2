// The geometry that all files of a request share.
#include <cstdio>

#include "io/cnvtcfile.h"
#include "plugin/TAVPlugin.h"

namespace {

constexpr std::int32_t kNotYetKnown = -1;

// A value of the request that is not yet known takes the file's.
bool agree(std::int32_t& ofRequest, std::int32_t ofFile) {
  if (ofRequest == kNotYetKnown) ofRequest = ofFile;
  return ofRequest == ofFile;
}

// Compared in this order; what was taken before a difference stays.
bool fitsGeometry(tav::TAV_Pars& pars, const VTC_Header& header) {
  return agree(pars.vtcXStart, header.xStart) && agree(pars.vtcXEnd, header.xEnd) &&
         agree(pars.vtcYStart, header.yStart) && agree(pars.vtcYEnd, header.yEnd) &&
         agree(pars.vtcZStart, header.zStart) && agree(pars.vtcZEnd, header.zEnd) &&
         agree(pars.vtcResolution, header.resolution);
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): this signature is known elsewhere
bool TAVPlugin::checkVTC(tav::TAV_Pars& pars, std::string path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  VTC_Header header{};
  // A refused header leaves its file open, deliberately: that is how this check has always treated
  // the host's files, and the file ends with the process. Closing it would break nothing here.
  if (!readVTCHeader(file, header)) return false;
  std::fclose(file);
  if (!hasUsableGeometry(header) || !fitsGeometry(pars, header)) return false;
  if (pars.vtcMaxNrOfVolumes < header.nrOfVolumes) pars.vtcMaxNrOfVolumes = header.nrOfVolumes;
  return true;
}
