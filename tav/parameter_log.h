// The block of settings at the head of every result log.
#ifndef TAVMAP_TAV_PARAMETER_LOG_H
#define TAVMAP_TAV_PARAMETER_LOG_H

#include <ostream>

#include "tav/run_options.h"
#include "tav/tav_pars.h"

namespace tav {

// Writes the version line and the settings, in the block's own order. rcUpperThres and
// separateSrcTrgVtcs are deliberately not in it.
void writeParameterLog(const TAV_Pars& pars, std::ostream& out);

// Writes what the run computes otherwise than the plug-in does; nothing for the defaults.
void writeRunOptionsLog(const RunOptions& options, std::ostream& out);

}  // namespace tav

#endif
