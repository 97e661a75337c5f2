// Takes what the engine delivers and turns it into files of a staging folder.
#ifndef TAVMAP_STUDY_RESULT_WRITER_H
#define TAVMAP_STUDY_RESULT_WRITER_H

#include <functional>
#include <string>
#include <vector>

#include "formats/image.h"
#include "results/output_names.h"
#include "results/result_json.h"
#include "study/data_warnings.h"
#include "study/file_store.h"
#include "study/study_plan.h"
#include "study/usable_region.h"
#include "tav/run_observer.h"

namespace study {

class ResultWriter : public tav::RunObserver {
 public:
  // regions: indices into the plan, in the order in which the engine computes them; usable: the voxels of
  // each that it averages. All arguments must outlive the writer. progress receives 0 to 1.
  ResultWriter(const StudyPlan& plan, const std::vector<std::size_t>& regions,
               const std::vector<UsableRegion>& usable, std::function<void(double)> progress);

  // Where the engine puts its maps: files of the staging folder.
  tav::MapStore& store() { return store_; }

  void onProgress(int percent) override;
  void onNullMaps(int percent) override;
  void onReferences(const std::vector<std::unique_ptr<tav::VoiTc>>& voiTcs) override;
  // Throws InputError, saying why, for a condition without a computed voxel.
  void onCondition(const tav::ConditionOutcome& outcome) override;
  // Writes the rest and publishes everything.
  void onVoi(const tav::TAV_VOI_Pars& voi) override;

 private:
  [[nodiscard]] std::size_t region() const { return regions_[current_]; }
  [[nodiscard]] const UsableRegion& usable() const { return usable_[current_]; }
  [[nodiscard]] OutputNames names() const;
  [[nodiscard]] ResultContext context() const;
  void writeStatus(const tav::ConditionOutcome& outcome, const std::string& label,
                   ConditionResult& condition);
  void requireComputed(std::size_t index, const ConditionResult& condition) const;
  void lookAtData(const tav::ConditionOutcome& outcome, const std::string& label, ConditionResult& condition);
  void writeEvidence(const tav::ConditionOutcome& outcome, const std::string& label,
                     const std::vector<ConditionRun>& runs, const ConditionFindings& findings,
                     ConditionResult& condition) const;
  void writeReversed(const std::string& label, std::vector<ConditionRun>& runs,
                     ConditionResult& condition) const;
  void writeDirections(const tav::ConditionOutcome& outcome, const std::string& label,
                       std::vector<ConditionRun>& runs, ConditionResult& condition);
  void writeSidecars();
  void writeMapSidecars(const ResultContext& shared, const ConditionResult& condition, const MapResult& map);
  void writeCourses(const OutputNames& names);
  void writeLog() const;
  void report(double conditionsDone) const;
  void writeText(const std::string& file, const std::string& text) const;
  void writeJson(const std::string& file, const nlohmann::ordered_json& json) const;

  const StudyPlan& plan_;
  const std::vector<std::size_t>& regions_;
  const std::vector<UsableRegion>& usable_;
  std::function<void(double)> progress_;
  int conditionsDone_ = 0;
  std::size_t current_ = 0;  // index into regions_
  formats::ImageHeader header_;
  Staging staging_;
  FileStore store_;
  ReferenceResult result_;
  std::vector<std::uint8_t> codes_;  // status codes of the condition at hand
  DataWarnings warnings_;
  ReferenceCourses courses_;
};

}  // namespace study

#endif
