#include "workbench/explore_images.h"

#include <fmt/core.h>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "prepare/anatomy.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

formats::ImageHeader headerOf(const study::Grid& grid) {
  formats::ImageHeader header;
  header.size = grid.size;
  header.affine = grid.affine;
  header.sformCode = 1;
  return header;
}

void writeFloats(const std::string& file, formats::ImageHeader header, const std::vector<float>& values) {
  header.dataType = formats::DataType::kFloat32;
  formats::NiftiWriter writer(file, header, formats::Durability::kCached);
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

void writeAnatomy(const live::LoadedStudy& study, const std::string& file) {
  const formats::Image3D anatomy = formats::readImage(study.plan.request.anatomy.string());
  formats::ImageHeader header = headerOf({anatomy.header.size, anatomy.header.affine});
  writeFloats(file, header, anatomy.values);
}

void writeLabels(const live::LoadedStudy& study, const std::string& file) {
  const study::LabelVolume& atlas = study.atlas->image;
  formats::ImageHeader header = headerOf(atlas.grid);
  header.dataType = formats::DataType::kInt32;
  formats::writeLabelImage(file, {header, atlas.labels});
}

void writeMask(const live::LoadedStudy& study, const std::string& file) {
  const study::Grid& grid = study.plan.space.grid;
  std::vector<float> values(grid.size.voxels(), 0.0F);
  for (const std::uint32_t cell : study.cells) values[cell] = 1;
  writeFloats(file, headerOf(grid), values);
}

void write(const live::LoadedStudy& study, const std::string& name, const std::string& file) {
  const study::StudyPlan& plan = study.plan;
  if (name == "anatomy" && !plan.request.anatomy.empty()) return writeAnatomy(study, file);
  if (name == "labels" && study.atlas) return writeLabels(study, file);
  if (name == "mask") return writeMask(study, file);
  if (name == "mean")
    return writeFloats(file, headerOf(plan.space.grid), study::meanOfFirstVolumes(plan.runs[0]));
  throw Refusal(404, fmt::format("there is no image '{}' of what is explored", name));
}

}  // namespace

fs::path exploreImage(const live::LoadedStudy& study, const std::string& name, const fs::path& folder) {
  const fs::path file = folder / (name + ".nii.gz");
  if (name.find('/') == std::string::npos && fs::exists(file)) return file;
  fs::create_directories(folder);
  write(study, name, file.string());
  return file;
}

}  // namespace workbench
