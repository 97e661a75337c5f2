#include "simulation/head.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "formats/nifti_writer.h"

namespace simulation {
namespace {

using Place = std::array<double, 3>;  // in half axes of the brain: its surface is the unit sphere

constexpr double kBrainHalfAxis = 0.46;  // of the extent
constexpr double kRegionRadius = 0.26;
constexpr double kOff = 0.38;  // regions lie at the corners of a cube, the reference at its middle
constexpr std::array<Place, 9> kRegionPlaces = {{{0, 0, 0},
                                                 {-kOff, -kOff, -kOff},
                                                 {kOff, kOff, kOff},
                                                 {kOff, -kOff, -kOff},
                                                 {-kOff, kOff, kOff},
                                                 {-kOff, kOff, -kOff},
                                                 {kOff, -kOff, kOff},
                                                 {kOff, kOff, -kOff},
                                                 {-kOff, -kOff, kOff}}};

constexpr std::array<std::uint32_t, 5> kKindColors = {0xFFD700, 0xD03020, 0x20A040, 0x3060D0, 0x909090};

double placeAlong(int index, int extent) {
  return (index - 0.5 * (extent - 1)) / (kBrainHalfAxis * extent);
}

double squaredDistance(const Place& a, const Place& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return sum;
}

std::int32_t labelAt(const Place& place, std::size_t regions) {
  for (std::size_t k = 0; k < regions; ++k)
    if (squaredDistance(place, kRegionPlaces[k]) < kRegionRadius * kRegionRadius)
      return static_cast<std::int32_t>(k + 1);
  return 0;
}

// White matter inside a grey shell whose inner border is folded.
float anatomyAt(const Place& place, double squaredRadius, NoiseStream& random) {
  const double fold = 0.12 * (place[0] * place[1] - place[2] * place[0] + 2 * place[1] * place[2]);
  const double tissue = squaredRadius < 0.55 + fold ? 1000 : 700;
  return static_cast<float>(std::floor(tissue + random.between(-30, 30)));
}

float baseAt(const Place& place, NoiseStream& random) {
  const double smooth = 10000 + 900 * place[0] + 700 * place[1] * place[1] - 800 * place[2];
  return static_cast<float>(std::clamp(smooth + random.between(-400, 400), 8000.0, 12000.0));
}

void addBrainVoxel(Head& head, std::size_t index, const Place& place, NoiseStream& random) {
  head.mask[index] = 1;
  head.labels[index] = labelAt(place, head.regionVoxels.size());
  if (head.labels[index] > 0) ++head.regionVoxels[static_cast<std::size_t>(head.labels[index] - 1)];
  head.anatomy[index] = anatomyAt(place, squaredDistance(place, {}), random);
  head.brain.push_back(index);
  head.base.push_back(baseAt(place, random));
}

formats::Affine centredAffine(const formats::GridSize& grid, double voxelMm) {
  formats::Affine affine;
  const std::array<int, 3> extents = {grid.x, grid.y, grid.z};
  for (int axis = 0; axis < 3; ++axis) {
    affine.at(axis, axis) = voxelMm;
    affine.at(axis, 3) = -0.5 * voxelMm * (extents[static_cast<std::size_t>(axis)] - 1);
  }
  return affine;
}

void writeVolume(const std::string& path, const Head& head, formats::DataType type,
                 const std::vector<float>& values, const char* description) {
  formats::NiftiWriter writer(path, headerOf(head, type, description));
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

}  // namespace

Head makeHead(const HeadOptions& options, const InfluenceModel& model, NoiseStream& random) {
  const formats::GridSize& grid = options.grid;
  Head head;
  head.grid = grid;
  head.affine = centredAffine(grid, options.voxelMm);
  head.spaceCode = options.spaceCode;
  head.mask.assign(grid.voxels(), 0);
  head.labels.assign(grid.voxels(), 0);
  head.anatomy.assign(grid.voxels(), 0);
  head.regionVoxels.assign(model.regions.size(), 0);
  std::size_t index = 0;
  for (int z = 0; z < grid.z; ++z)
    for (int y = 0; y < grid.y; ++y)
      for (int x = 0; x < grid.x; ++x, ++index) {
        const Place place = {placeAlong(x, grid.x), placeAlong(y, grid.y), placeAlong(z, grid.z)};
        if (squaredDistance(place, {}) < 1) addBrainVoxel(head, index, place, random);
      }
  return head;
}

formats::ImageHeader headerOf(const Head& head, formats::DataType type, const std::string& description) {
  formats::ImageHeader header;
  header.size = head.grid;
  header.dataType = type;
  header.affine = header.qform = head.affine;
  header.sformCode = header.qformCode = head.spaceCode;
  header.description = description;
  return header;
}

formats::LabelTable labelTableOf(const InfluenceModel& model) {
  formats::LabelTable table;
  std::int32_t index = 0;
  for (const RegionModel& region : model.regions)
    table.labels.push_back({++index, region.name, kKindColors[static_cast<std::size_t>(region.kind)]});
  return table;
}

void writeAnatomy(const std::string& path, const Head& head) {
  writeVolume(path, head, formats::DataType::kInt16, head.anatomy, "simulated anatomy");
}

void writeMask(const std::string& path, const Head& head) {
  writeVolume(path, head, formats::DataType::kUint8, head.mask, "simulated brain mask");
}

void writeLabels(const std::string& path, const Head& head) {
  formats::LabelImage image{headerOf(head, formats::DataType::kUint8, "simulated regions"), head.labels};
  image.header.intentCode = formats::kLabelIntent;
  formats::writeLabelImage(path, image);
}

}  // namespace simulation
