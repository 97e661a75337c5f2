// One simulated run: the voxels' courses as a scanner would show them, volume after volume.
//
//   value = (base + drift) * saturation + kAmplitude * (course + sum of artefacts)   in the brain,
//   0 to 40                                                                          elsewhere.
//
// The drift is a straight line of up to 1 % of the base in either direction over the run.
#ifndef TAVMAP_SIMULATION_SCAN_H
#define TAVMAP_SIMULATION_SCAN_H

#include <vector>

#include "simulation/course_simulator.h"
#include "simulation/head.h"

namespace simulation {

inline constexpr double kAmplitude = 80;  // intensity of one unit of a course

// What a scanner adds to the brain's courses. Empty: nothing.
struct Artefacts {
  // One value per volume each; every voxel has a weight of its own, 0.5 to 1.5, for every course.
  std::vector<std::vector<double>> courses;
  // Factors of the first volumes, while the magnetisation is not steady.
  std::vector<double> saturation;
};

class Scan {
 public:
  // All references must outlive the scan. Precondition: volumes >= 2.
  Scan(const Head& head, const InfluenceModel& model, const Artefacts& artefacts, int volumes,
       NoiseStream& random);

  // From the next volume on another model holds, with as many regions. It must outlive the scan.
  void use(const InfluenceModel& model) { courses_.use(model); }

  // The next volume, over the head's grid. Precondition: called at most `volumes` times.
  const std::vector<float>& nextVolume();

 private:
  [[nodiscard]] double artefactOf(std::size_t voxel) const;

  const Head& head_;
  const Artefacts& artefacts_;
  NoiseStream& random_;
  int volumes_, volume_ = 0;
  std::vector<double> slopes_;   // per brain voxel, of the base over the run
  std::vector<double> weights_;  // [brain voxel][artefact]
  CourseSimulator courses_;
  std::vector<float> values_;
};

}  // namespace simulation

#endif
