// The settings reader: whatever the text, the record stays inside its ranges.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "tav/ini_file.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void requireRanges(const tav::TAV_Pars& pars) {
  require(!pars.mapTypes.empty() && !pars.qThresholds.empty());
  for (const float q : pars.qThresholds) require(q > 0.0F && q < 1.0F);
  require(pars.cvConstant == 1 || pars.cvConstant == 2);
  require(pars.arOrder >= 1 && pars.arOrder <= 20);
  require(pars.nSurrogateSims >= 10 && pars.nSurrogateSims <= 10000);
  require(pars.nDiscardedSimTps >= 10 && pars.nDiscardedSimTps <= 1000);
  require(pars.instLowerThres >= 0.0F);
  require(pars.rcUpperThres >= 0.0F && pars.rcUpperThres < 1.0F);
  require(pars.mapScaleFactor >= 0.01F && pars.mapScaleFactor <= 1000.0F);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream file(std::string(reinterpret_cast<const char*>(data), size));
  std::ostringstream err;
  tav::TAV_Pars pars;
  const bool accepted = tav::loadINIFile(file, pars, err);
  require(accepted == err.str().empty());
  requireRanges(pars);
  return 0;
}
