#include "planning/miniature.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "formats/nifti_writer.h"

namespace planning {
namespace {

namespace fs = std::filesystem;

constexpr int kSide = 10;  // of the box along x and y
constexpr double kLevel = 10000, kAmplitude = 200;
constexpr int kReferenceVoxels = 4;

// Noise that need not be good, only as hard to compress as a scanner's.
class Hash {
 public:
  double next() {
    state_ ^= state_ << 13U;
    state_ ^= state_ >> 7U;
    state_ ^= state_ << 17U;
    return static_cast<double>(state_ >> 11U) * 0x1p-53 - 0.5;
  }

 private:
  std::uint64_t state_ = 0x9e3779b97f4a7c15U;
};

formats::ImageHeader headerOf(int slices, formats::DataType type) {
  formats::ImageHeader header;
  header.size = {kSide, kSide, slices};
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 3;
  header.sformCode = 1;
  header.dataType = type;
  return header;
}

bool isInside(int voxel, double share) {
  return static_cast<int>(std::floor((voxel + 1) * share)) > static_cast<int>(std::floor(voxel * share));
}

void writeRun(const fs::path& file, const study::RunPlan& run, int slices) {
  formats::ImageHeader header = headerOf(slices, formats::DataType::kInt16);
  header.volumes = run.volumes.volumes;
  header.series = true;
  header.trMs = 1000 * run.volumes.trSeconds;
  formats::NiftiWriter writer(file.string(), header, formats::Durability::kCached);
  Hash noise;
  std::vector<float> volume(header.size.voxels());
  for (int v = 0; v < header.volumes; ++v) {
    for (float& value : volume) value = static_cast<float>(kLevel + kAmplitude * noise.next());
    writer.writeValues(volume.data(), volume.size());
  }
  writer.commit();
}

void writeMask(const fs::path& file, int slices, double share) {
  formats::NiftiWriter writer(file.string(), headerOf(slices, formats::DataType::kUint8),
                              formats::Durability::kCached);
  std::vector<float> mask(headerOf(slices, formats::DataType::kUint8).size.voxels());
  for (std::size_t v = 0; v < mask.size(); ++v) mask[v] = isInside(static_cast<int>(v), share) ? 1.0F : 0.0F;
  writer.writeValues(mask.data(), mask.size());
  writer.commit();
}

study::ReferenceRequest referenceAt(std::size_t number, double share) {
  study::ReferenceRequest reference;
  reference.kind = study::ReferenceKind::kVoxels;
  reference.name = fmt::format("R{}", number);
  for (int voxel = static_cast<int>(number) * 2 * kSide; reference.voxels.size() < kReferenceVoxels;
       ++voxel) {
    if (isInside(voxel, share))
      reference.voxels.push_back({voxel % kSide, voxel / kSide % kSide, voxel / kSide / kSide});
  }
  return reference;
}

bool isCompressed(const fs::path& file) {
  return file.extension() == ".gz";
}

}  // namespace

study::Request miniatureOf(const study::StudyPlan& plan, std::size_t voxels, double share,
                           std::size_t references, const fs::path& folder) {
  const int slices = std::max(2, static_cast<int>(voxels) / (kSide * kSide));
  study::Request request = plan.request;
  request.output = {folder / "out", folder / "work", "mini"};
  request.anatomy.clear();
  request.datasets = {{"input", folder}};
  writeMask(folder / "mask.nii.gz", slices, share);
  for (std::size_t i = 0; i < request.runs.size(); ++i) {
    study::RunRequest& run = request.runs[i];
    const char* ending = isCompressed(run.bold) ? ".nii.gz" : ".nii";
    run.bold = folder / fmt::format("run{}{}", i, ending);
    run.mask = folder / "mask.nii.gz";
    run.trSeconds = plan.runs[i].volumes.trSeconds;
    writeRun(run.bold, plan.runs[i], slices);
  }
  request.references.clear();
  for (std::size_t k = 0; k < references; ++k) request.references.push_back(referenceAt(k, share));
  return request;
}

}  // namespace planning
