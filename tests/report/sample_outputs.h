// Outputs of a request as `tavmap run` leaves them, small and made by hand: one marker on the patient's left.
#ifndef TAVMAP_TESTS_REPORT_SAMPLE_OUTPUTS_H
#define TAVMAP_TESTS_REPORT_SAMPLE_OUTPUTS_H

#include <array>
#include <filesystem>
#include <string>

#include "formats/affine.h"
#include "results/record.h"

namespace sample_outputs {

// x stored to the left, to the right, and turned by a fifth about z with x to the left.
[[nodiscard]] formats::Affine las();
[[nodiscard]] formats::Affine ras();
[[nodiscard]] formats::Affine oblique();

struct Sample {
  formats::Affine affine = las();
  std::string reference = "V1", condition = "faces", warning = "few volumes", label = "lobe";
  bool survives = true;                                                    // else no voxel passes at any q
  study::DirectionCode direction = study::DirectionCode::kReferenceLeads;  // of the marker
};

inline constexpr std::array<double, 3> kMarkerMm = {-12, 9, 8};  // of the marker's centre, about

// Writes a record with two maps (REF2VOX and DTAV), status, direction, p, clusters, evidence and a mean image
// under the prefix "sample". The marker is a block of some voxels whose DTAV is 50; all else is below 1
// in magnitude. The reference is a block on the patient's right.
void writeTo(const std::filesystem::path& folder, const Sample& sample);

// The voxel of the marker that the cluster table calls the peak, and its millimetres.
[[nodiscard]] std::array<int, 3> markerVoxel(const formats::Affine& affine);

[[nodiscard]] study::Record recordOf(const Sample& sample);

}  // namespace sample_outputs

#endif
