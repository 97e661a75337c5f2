// The images of one condition, and the table of its clusters.
#ifndef TAVMAP_STUDY_CONDITION_IMAGES_H
#define TAVMAP_STUDY_CONDITION_IMAGES_H

#include <cstdint>
#include <string>
#include <vector>

#include "formats/image.h"
#include "results/output_names.h"
#include "results/results.h"
#include "study/study_plan.h"
#include "tav/run_observer.h"

namespace study {

// Writes into the staging folder. All functions throw formats::FileError.
class ConditionImages {
 public:
  // label: of the condition, for file names. run: header of a run, for the grid. codes: StatusCode per voxel.
  // All but `names` and `label` must outlive the object.
  ConditionImages(const StudyPlan& plan, const Staging& staging, OutputNames names, std::string label,
                  const formats::ImageHeader& run, const std::vector<std::uint8_t>& codes)
      : plan_(plan),
        staging_(staging),
        names_(std::move(names)),
        label_(std::move(label)),
        run_(run),
        codes_(codes) {}

  // The maps as they are, their p-values, and where they pass, each as far as the outcome has it.
  [[nodiscard]] std::vector<MapResult> writeMaps(const tav::ConditionOutcome& outcome) const;
  // The clusters of all maps as one table; returns its name, empty when no map has thresholds. maps: what
  // writeMaps() returned for this outcome.
  [[nodiscard]] std::string writeClusters(const tav::ConditionOutcome& outcome,
                                          const std::vector<MapResult>& maps) const;

 private:
  [[nodiscard]] MapResult writeEffect(const tav::MapOutcome& map) const;
  void writePassing(const tav::MapOutcome& map, MapResult& result) const;
  [[nodiscard]] FamilyWiseResult writeFamilyWise(const tav::MapOutcome& map,
                                                 const tav::NullMaxima& nulls) const;
  void writeImage(const std::string& file, const std::string& description, const float* values) const;
  [[nodiscard]] const Grid& grid() const { return plan_.runs[0].grid; }

  const StudyPlan& plan_;
  const Staging& staging_;
  OutputNames names_;
  std::string label_;
  const formats::ImageHeader& run_;
  const std::vector<std::uint8_t>& codes_;
};

}  // namespace study

#endif
