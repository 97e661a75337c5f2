// Names and shape of what a reference leaves behind: its map set and its files.
#ifndef TAVMAP_TAV_RESULT_MAPS_H
#define TAVMAP_TAV_RESULT_MAPS_H

#include <string>

#include "tav/run_log.h"
#include "tav/tav_pars.h"

namespace tav {

// Maps of one reference: one per condition and map type. Map index: number of map types times
// condition index, plus the type's position among the requested ones.
[[nodiscard]] int nrOfMapsOf(const TAV_Pars& pars);

// The reference's result files without extension: prefix, "_", the reference's name with path
// separators replaced by "_"; cut after 511 characters.
[[nodiscard]] std::string resultBaseName(const TAV_Pars& pars, const TAV_VOI_Pars& voi);

// Logs a warning for every two references whose result files have the same name.
void warnOfEqualResultNames(const TAV_Pars& pars, const RunLog& log);

}  // namespace tav

#endif
