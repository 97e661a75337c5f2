// Single values of a series that stand out of its autoregressive model, and the model of the rest.
#ifndef TAVMAP_SIMO_SPIKES_H
#define TAVMAP_SIMO_SPIKES_H

#include <vector>

#include "simo/burg.h"

namespace simo {

// Whether each residual lies more than six standard deviations from zero; these are estimated by the median
// of the magnitudes, which spikes hardly move.
[[nodiscard]] std::vector<bool> spikesAmong(const std::vector<double>& residuals);

// fitBurg() of the largest order that mostBurgOrder() allows, to what lies between the spikes: a spike that
// was added to the series, and does not fade as the series does, would hide how the series remembers. Where
// there is a spike the fit sees the line between its neighbours in the stretch, zero beyond its ends. The
// residuals are those of the series with its spikes. Without spikes all is as fitBurg() has it.
// (Fitting to what is left without outliers: Chang, Tiao & Chen 1988, Technometrics 30, 193-204,
// doi:10.1080/00401706.1988.10488367.)
[[nodiscard]] BurgModel fitBetweenSpikes(const std::vector<double>& series,
                                         const std::vector<Stretch>& stretches);

}  // namespace simo

#endif
