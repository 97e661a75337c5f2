// The planted influences: which region drives or follows the reference, and how strongly.
//
// With r(t) the reference's course and m_k(t) the mean course of region k over its voxels:
//
//   r(t)   = a_r r(t-1) + sum over k of drive_k m_k(t-1) + e_r(t)
//   x_v(t) = a_k x_v(t-1) + follow_k r(t-1) + e_v(t)          for every voxel v of region k
//   e_v    = share_k e_r + sqrt(1 - share_k^2) (sqrt(c_k) h_k + sqrt(1 - c_k) g_v)
//
// e_r, h_k (one per region) and g_v (one per voxel) are independent standard normal at every time
// point. Regions that drive have a_k = 0: their mean is then white, so that the reference and any
// voxel together are a vector autoregression of order 1 exactly, and all feedback measures are
// known in closed form.
#ifndef TAVMAP_SIMULATION_INFLUENCE_MODEL_H
#define TAVMAP_SIMULATION_INFLUENCE_MODEL_H

#include <cstddef>
#include <string>
#include <vector>

namespace simulation {

enum class Kind { kReference, kDriven, kDriving, kInstantaneous, kUnrelated };

// "reference", "driven", "driving", "instantaneous", "unrelated".
[[nodiscard]] const char* nameOf(Kind kind);
// False, with `kind` untouched, for any other word.
[[nodiscard]] bool kindFromName(const std::string& name, Kind& kind);

struct RegionModel {
  std::string name;
  Kind kind = Kind::kUnrelated;
  double autoregression = 0;  // a_k; a_r for the reference
  double follow = 0;          // weight of the reference's last value
  double drive = 0;           // weight of this region's last mean in the reference
  double share = 0;           // of the reference's innovation, -1 to 1
  double coherence = 0;       // c_k, 0 to 1: correlation of two voxels' innovations
};

// Region k has the label k + 1; the reference comes first.
struct InfluenceModel {
  std::vector<RegionModel> regions;

  [[nodiscard]] const RegionModel& reference() const { return regions.front(); }
};

// The nine regions of every data set: the reference and two of each other kind. `strength` scales
// drive, follow and share; 0 plants nothing. Precondition: 0 <= strength <= 1.5.
[[nodiscard]] InfluenceModel plantedModel(double strength);

// Geweke's measures of order 1 between the reference and one voxel, natural logarithms, unscaled.
struct Measures {
  double ref2vox = 0, vox2ref = 0, inst = 0;
};

// Their values for endless data, where `voxels` holds the number of voxels of every region.
// Geweke 1982, Journal of the American Statistical Association 77(378); autocovariances from the
// Lyapunov equation of the two-variable process.
[[nodiscard]] Measures expectedMeasures(const InfluenceModel& model, const std::vector<std::size_t>& voxels,
                                        std::size_t region);

}  // namespace simulation

#endif
