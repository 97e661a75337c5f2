#include "report/underlay.h"

#include <filesystem>

#include "formats/nifti.h"

namespace report {
namespace {

struct Candidate {
  const char *end, *words;
};
constexpr Candidate kCandidates[] = {{"_desc-anatomy_T1w.nii.gz", "the anatomy on the grid of the runs"},
                                     {"_desc-mean_boldref.nii.gz", "the mean image of the first run"}};

}  // namespace

Underlay readUnderlay(const StudyOutputs& outputs, const PageGrid& grid) {
  for (const Candidate& candidate : kCandidates) {
    const std::string path = outputs.path(outputs.prefix + candidate.end);
    if (!std::filesystem::exists(path)) continue;
    formats::Image3D image = formats::readImage(path);
    formats::requireSameGrid(image.header, path, grid.header(), outputs.prefix);
    return {std::move(image.values), candidate.words, 1};
  }
  const std::string status = outputs.references[0].record.conditions[0].statusFile;
  std::vector<float> values = formats::readImage(outputs.path(status)).values;
  for (float& value : values) value = value > 0 ? 1.0F : 0.0F;
  return {std::move(values), "the voxels that were looked at, since no image of the brain was kept", 0.35};
}

}  // namespace report
