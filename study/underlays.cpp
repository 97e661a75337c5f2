#include "study/underlays.h"

#include <fmt/core.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "prepare/anatomy.h"
#include "results/map_findings.h"
#include "results/output_names.h"
#include "results/result_json.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct Underlay {
  std::string name;         // of the file
  std::string description;  // for viewers
  Json sidecar;
  std::vector<fs::path> sources;
  std::function<std::vector<float>()> values;
};

Underlay meanVolume(const StudyPlan& plan) {
  const RunPlan& run = plan.runs[0];
  const VolumeRange volumes = firstVolumes(run);
  Json sidecar;
  sidecar["Description"] = fmt::format(
      "mean of volumes {} to {} of run '{}', in the unit of the image; to draw maps on, no result is made "
      "from it",
      volumes.first, volumes.last, run.request.name);
  sidecar["Sources"] = {sourceUri(plan.request, run.request.bold)};
  sidecar["Volumes"] = {volumes.first, volumes.last};
  sidecar["SoftwareVersion"] = plan.version;
  return {meanVolumeName(plan.request.output.prefix),
          "mean of first volumes",
          sidecar,
          {run.request.bold},
          [&run] { return meanOfFirstVolumes(run); }};
}

Underlay anatomy(const StudyPlan& plan) {
  const RunPlan& run = plan.runs[0];
  const fs::path& file = plan.request.anatomy;
  Json sidecar;
  sidecar["Description"] =
      "anatomy on the grid of the runs, by trilinear interpolation in millimetres, 0 outside; to draw maps "
      "on, no "
      "result is made from it";
  sidecar["Sources"] = {sourceUri(plan.request, file), sourceUri(plan.request, run.request.bold)};
  sidecar["SoftwareVersion"] = plan.version;
  return {anatomyName(plan.request.output.prefix),
          "anatomy on the grid of runs",
          sidecar,
          {file, run.request.bold},
          [&file, &run] { return anatomyOnGrid(file, run.grid); }};
}

bool isThere(const Underlay& underlay, const fs::path& image, const fs::path& sidecar,
             const std::string& text) {
  std::error_code missing;
  const auto written = fs::last_write_time(image, missing);
  if (missing || !fs::exists(sidecar) || formats::readTextFile(sidecar.string()) != text) return false;
  for (const fs::path& source : underlay.sources)
    if (!(fs::last_write_time(source) < written)) return false;
  return true;
}

// The sidecar last: it vouches for the image.
void writeUnlessThere(const StudyPlan& plan, const Underlay& underlay) {
  const fs::path folder = plan.request.output.folder;
  const fs::path image = folder / underlay.name, sidecar = folder / OutputNames::sidecarOf(underlay.name);
  const std::string text = underlay.sidecar.dump(2) + "\n";
  if (isThere(underlay, image, sidecar, text)) return;
  const std::vector<float> values = underlay.values();
  formats::ImageHeader header = mapHeader(formats::readImageHeader(plan.runs[0].request.bold.string()));
  header.description = underlay.description;
  formats::NiftiWriter writer(image.string(), header);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  formats::writeTextFile(sidecar.string(), text);
}

}  // namespace

void writeUnderlays(const StudyPlan& plan) {
  writeUnlessThere(plan, meanVolume(plan));
  if (!plan.request.anatomy.empty()) writeUnlessThere(plan, anatomy(plan));
}

}  // namespace study
