// Nuisance series of a simulated run, as fMRIPrep tables have them, and what they do to the images.
#ifndef TAVMAP_SIMULATION_CONFOUNDS_H
#define TAVMAP_SIMULATION_CONFOUNDS_H

#include <string>
#include <vector>

#include "simulation/noise_stream.h"
#include "simulation/scan.h"

namespace simulation {

struct Confound {
  std::string name;
  std::vector<double> values;  // one per volume; NaN: not defined there (n/a)
};

// Six realignment parameters (mm, radians) with derivatives and squares: 24 columns; frame-wise
// displacement in mm (rotations on a sphere of 50 mm; Power et al. 2012, NeuroImage 59(3)); six
// component series, a cosine, and one indicator for each volume that is not steady. In every run
// the head jerks once by more than 0.5 mm. `motion`: factor of all other movement, above 0.
[[nodiscard]] std::vector<Confound> drawConfounds(int volumes, NoiseStream& random, double motion = 1);

// Weights on trans_y and a_comp_cor_00, and brighter first volumes: regressing those two columns
// out of a run without its first volumes leaves what was planted.
[[nodiscard]] Artefacts artefactsOf(const std::vector<Confound>& confounds);

inline constexpr int kUnsteadyVolumes = 2;

// Header line and one line a volume, "n/a" for NaN.
[[nodiscard]] std::string confoundsTable(const std::vector<Confound>& confounds);

}  // namespace simulation

#endif
