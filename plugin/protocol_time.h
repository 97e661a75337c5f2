// From a protocol's milliseconds to volumes.
#ifndef TAVMAP_PLUGIN_PROTOCOL_TIME_H
#define TAVMAP_PLUGIN_PROTOCOL_TIME_H

#include "tav/tav_pars.h"

// The volumes, from 1, of [startMs, endMs] at the repetition time trMs (at least 1). Asymmetric on
// purpose: the start is rounded to the nearest volume and moved one on, since volumes count from 1;
// the end is only rounded. An interval that would end before it starts gets one volume.
[[nodiscard]] tav::TAV_intv volumesOfMilliseconds(int startMs, int endMs, int trMs);

#endif
