// What became of the direction of voxels whose difference map passes: kept by its control, or not.
#ifndef TAVMAP_RESULTS_DIRECTION_RESULT_H
#define TAVMAP_RESULTS_DIRECTION_RESULT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace study {

// Codes of the direction map.
enum class DirectionCode : std::uint8_t {
  kNotTested = 0,  // does not pass, or lies in the reference
  kReferenceLeads = 1,
  kVoxelLeads = 2,
  kNotSupported = 3,  // passes, but its direction may be that of unequal noise
  kNoVerdict = 4      // passes, but a model of the control is degenerate
};
inline constexpr std::size_t kDirectionCodes = 5;
using DirectionCounts = std::array<std::size_t, kDirectionCodes>;  // voxels by code
[[nodiscard]] const char* directionName(DirectionCode code);

// Of one condition.
struct DirectionResult {
  double q = 0;      // voxels that pass DTAV at it are tested
  std::string file;  // the direction map, relative to the output folder; empty: there is none
  DirectionCounts voxels{};

  [[nodiscard]] bool empty() const { return file.empty(); }
  [[nodiscard]] std::size_t count(DirectionCode code) const { return voxels[static_cast<std::size_t>(code)]; }
  [[nodiscard]] std::size_t tested() const;
  [[nodiscard]] std::size_t supported() const;
  bool operator==(const DirectionResult&) const = default;
};

// "of 884 voxels that pass DTAV at q = 0.1, 617 keep their direction when it is tested with reversed
// time: V1 leads 402 and follows 215; ...". Says so when there is nothing to test.
[[nodiscard]] std::string directionText(const DirectionResult& direction, const std::string& reference);

// What the control does, and what it cannot do: to be said wherever results speak of direction.
inline constexpr const char* kDirectionNote =
    "Unequal noise alone makes the cleaner of two series seem to lead, and the sign of a difference map "
    "cannot tell. The direction map says which voxels keep their direction when it is tested with reversed "
    "time, in which a lead changes sides and what is shared without delay does not (Haufe et al. 2013, "
    "doi:10.1016/j.neuroimage.2012.09.036; Winkler et al. 2016, doi:10.1109/TSP.2015.2498123). It cannot "
    "catch a true lag that comes from blood vessels alone";

}  // namespace study

#endif
