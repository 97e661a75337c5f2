// Takes what a run finds over to the cells of a study.
#ifndef TAVMAP_LIVE_OUTCOME_TAKER_H
#define TAVMAP_LIVE_OUTCOME_TAKER_H

#include "live/live_maps.h"
#include "live/loaded_study.h"
#include "tav/run_observer.h"

namespace live {

class OutcomeTaker : public tav::RunObserver {
 public:
  // Fills maps, status, courses and volumes. Both outlive it.
  OutcomeTaker(const LoadedStudy& study, LiveMaps& maps) : study_(study), maps_(maps) {}
  void onCondition(const tav::ConditionOutcome& outcome) override;

 private:
  [[nodiscard]] LiveMap taken(const tav::MapOutcome& map) const;
  void takeCourse(const tav::VoiTc& course);

  const LoadedStudy& study_;
  LiveMaps& maps_;
};

}  // namespace live

#endif
