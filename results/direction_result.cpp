#include "results/direction_result.h"

#include <fmt/core.h>

#include <numeric>

#include "formats/json_file.h"

namespace study {

const char* directionName(DirectionCode code) {
  switch (code) {
    case DirectionCode::kReferenceLeads:
      return "the reference leads, supported";
    case DirectionCode::kVoxelLeads:
      return "the voxel leads, supported";
    case DirectionCode::kNotSupported:
      return "direction not supported";
    case DirectionCode::kNoVerdict:
      return "could not be judged";
    case DirectionCode::kNotTested:
      break;
  }
  return "not tested";
}

std::size_t DirectionResult::tested() const {
  return std::accumulate(voxels.begin() + 1, voxels.end(), std::size_t{0});
}

std::size_t DirectionResult::supported() const {
  return count(DirectionCode::kReferenceLeads) + count(DirectionCode::kVoxelLeads);
}

std::string directionText(const DirectionResult& direction, const std::string& reference) {
  const std::string q = formats::Json(direction.q).dump();
  const std::size_t tested = direction.tested();
  if (tested == 0) return fmt::format("no voxel passes DTAV at q = {}, so that no direction was tested", q);
  std::string text =
      fmt::format("of {} {} DTAV at q = {}, {} {} direction when it is tested with reversed time", tested,
                  tested == 1 ? "voxel that passes" : "voxels that pass", q, direction.supported(),
                  direction.supported() == 1 ? "keeps its" : "keep their");
  if (direction.supported() > 0)
    text += fmt::format(": {} leads {} and follows {}", reference,
                        direction.count(DirectionCode::kReferenceLeads),
                        direction.count(DirectionCode::kVoxelLeads));
  if (const std::size_t none = direction.count(DirectionCode::kNoVerdict); none > 0)
    text += fmt::format("; {} could not be judged", none);
  return text;
}

}  // namespace study
