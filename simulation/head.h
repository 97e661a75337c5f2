// The simulated head: an ellipsoidal brain in an empty box, with the regions of a model inside.
#ifndef TAVMAP_SIMULATION_HEAD_H
#define TAVMAP_SIMULATION_HEAD_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/image.h"
#include "formats/label_table.h"
#include "simulation/influence_model.h"
#include "simulation/noise_stream.h"

namespace simulation {

struct HeadOptions {
  formats::GridSize grid{24, 28, 20};
  double voxelMm = 3;
  int spaceCode = 1;  // NIfTI form code: 1 scanner, 4 MNI
};

// Images are over the grid, [z][y][x].
struct Head {
  formats::GridSize grid;
  formats::Affine affine;  // RAS+, the middle of the grid at 0 mm
  int spaceCode = 1;
  std::vector<float> mask;                // 1 in the brain
  std::vector<std::int32_t> labels;       // 0, or the number of a region from 1
  std::vector<float> anatomy;             // whole numbers
  std::vector<std::size_t> brain;         // indices of the brain's voxels, ascending
  std::vector<float> base;                // mean intensity of each of them, 8,000 to 12,000
  std::vector<std::size_t> regionVoxels;  // voxels of region k, label k + 1
};

// The smallest extent of a grid along any axis, for which every region has some voxels; the largest.
inline constexpr int kSmallestExtent = 12;
inline constexpr int kLargestExtent = 256;

// Preconditions: at most nine regions, extents within the limits.
[[nodiscard]] Head makeHead(const HeadOptions& options, const InfluenceModel& model, NoiseStream& random);

// Header of an image over the head's grid.
[[nodiscard]] formats::ImageHeader headerOf(const Head& head, formats::DataType type,
                                            const std::string& description);

// Names and colours of the regions.
[[nodiscard]] formats::LabelTable labelTableOf(const InfluenceModel& model);

void writeAnatomy(const std::string& path, const Head& head);
void writeMask(const std::string& path, const Head& head);
void writeLabels(const std::string& path, const Head& head);

}  // namespace simulation

#endif
