#include "report/group_view.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include "formats/file_error.h"
#include "formats/nifti.h"
#include "group/group_names.h"

namespace report {
namespace {

namespace fs = std::filesystem;

std::vector<float> readUpright(const GroupOutputs& outputs, const PageGrid& grid, const TestedCell& cell,
                               const char* what) {
  const std::string file = cell.record.image(what);
  return file.empty() ? std::vector<float>() : grid.upright(formats::readImage(outputs.path(file)).values);
}

std::vector<std::uint8_t> within(const study::GroupInference& inference, const std::vector<float>& p,
                                 std::size_t voxels) {
  std::vector<std::uint8_t> flags(voxels, 0);
  for (std::size_t i = 0; i < p.size(); ++i) flags[i] = inference.admits(p[i]) ? 1 : 0;
  return flags;
}

OverlayScale scaleOfGroup(const GroupView& view) {
  OverlayScale scale;
  scale.hasSign = true;
  float largest = 0;
  for (std::size_t i = 0; i < view.t.size(); ++i) {
    if (std::isnan(view.t[i])) continue;
    const float magnitude = std::fabs(view.t[i]);
    largest = std::max(largest, magnitude);
    if (view.passes[i] != 0) scale.threshold = std::min(scale.threshold.value_or(magnitude), magnitude);
  }
  scale.full = largest > 0 ? largest : 1;
  return scale;
}

// "OUT/PREFIX_desc-mean_boldref.nii.gz" of the request that a map belongs to.
fs::path besideMap(const fs::path& outDir, const std::string& image, const char* end) {
  return outDir / (image.substr(0, image.rfind("_seed-")) + end);
}

struct MeanOfImages {
  const char *end, *words;
};
constexpr MeanOfImages kMeansOfImages[] = {{"_desc-anatomy_T1w.nii.gz", "anatomies"},
                                           {"_desc-mean_boldref.nii.gz", "mean images"}};

// Each brain as bright as the others.
void addScaled(const std::vector<float>& image, std::vector<float>& sum) {
  double total = 0;
  for (const float value : image) total += std::isfinite(value) ? std::fabs(static_cast<double>(value)) : 0;
  const double mean = total > 0 ? total / static_cast<double>(image.size()) : 1;
  for (std::size_t i = 0; i < sum.size(); ++i)
    if (std::isfinite(image[i])) sum[i] += static_cast<float>(static_cast<double>(image[i]) / mean);
}

GroupUnderlay meanOf(const GroupOutputs& outputs, const PageGrid& grid, const MeanOfImages& candidate) {
  GroupUnderlay underlay{std::vector<float>(grid.voxels(), 0), "", 1};
  std::set<fs::path> files;
  for (const TestedCell& cell : outputs.cells)
    for (const study::GroupRow& row : cell.record.rows)
      files.insert(besideMap(outputs.outDir, row.images.at(0), candidate.end));
  std::size_t count = 0;
  for (const fs::path& file : files) {
    if (!fs::exists(file)) continue;
    const formats::Image3D image = formats::readImage(file.string());
    if (!(image.header.size == grid.header().size)) continue;
    addScaled(image.values, underlay.values);
    ++count;
  }
  if (count > 0) underlay.words = fmt::format("the mean of {} {}", count, candidate.words);
  return underlay;
}

}  // namespace

render::Rgba GroupView::colour(std::size_t voxel) const {
  const float value = t[voxel];
  if (std::isnan(value)) return {};
  if (passes[voxel] != 0) return MapOverlay(scale).colour(value);
  OverlayScale faint = scale;
  faint.threshold.reset();  // also what is stronger than some of what passes, without neighbours
  return MapOverlay(faint).colour(value);
}

GroupView readGroupView(const GroupOutputs& outputs, const PageGrid& grid, const TestedCell& cell) {
  GroupView view;
  const study::GroupInference& inference = cell.record.inference;
  view.t = readUpright(outputs, grid, cell, study::group_image::kT);
  std::vector<float> p = readUpright(outputs, grid, cell, study::group_image::kPTfce);
  if (p.empty()) p = readUpright(outputs, grid, cell, study::group_image::kPFwe);
  view.passes = within(inference, p, grid.voxels());
  view.clusters =
      within(inference, readUpright(outputs, grid, cell, study::group_image::kPMass), grid.voxels());
  view.scale = scaleOfGroup(view);
  return view;
}

GroupUnderlay readGroupUnderlay(const GroupOutputs& outputs, const PageGrid& grid) {
  for (const MeanOfImages& candidate : kMeansOfImages) {
    GroupUnderlay underlay = meanOf(outputs, grid, candidate);
    if (!underlay.words.empty()) return underlay;
  }
  const std::string t = outputs.cells.at(0).record.image(study::group_image::kT);
  std::vector<float> values = formats::readImage(outputs.path(t)).values;
  for (float& value : values) value = std::isnan(value) ? 0.0F : 1.0F;
  return {std::move(values), "the voxels that were tested, since no image of the brain was kept", 0.35};
}

}  // namespace report
