// A simulated BIDS data set with derivatives in the manner of fMRIPrep:
//
//   dataset_description.json  README  participants.tsv (.json)  task-blocks_events.json
//   sub-01/anat/sub-01_T1w.nii.gz (.json)
//   sub-01/func/sub-01_task-blocks_run-1_{bold.nii.gz, bold.json, events.tsv}
//   derivatives/preprocessed/sub-01/anat/sub-01_space-S_desc-preproc_T1w.nii.gz (.json)
//   derivatives/preprocessed/sub-01/func/sub-01_task-blocks_run-1_
//       space-S_desc-preproc_bold.nii.gz (.json)  space-S_desc-brain_mask.nii.gz (.json)
//       desc-confounds_timeseries.tsv (.json)
//   derivatives/atlas/atlas-Simulated_space-S_dseg.nii.gz (.tsv)  sub-01_truth.json  study_truth.json
//
// S is MNI152NLin2009cAsym, in which every participant has the same head. study_truth.json goes with a group
// study alone.
#ifndef TAVMAP_SIMULATION_BIDS_TREE_H
#define TAVMAP_SIMULATION_BIDS_TREE_H

#include <string>

#include "simulation/data_set.h"
#include "simulation/group_design.h"

namespace simulation {

inline constexpr int kMostParticipants = 99;

// As writeDataSet. `options.runs` are the runs of each participant, 1 to kMostParticipants of them.
void writeBidsTree(const std::string& folder, const DataSetOptions& options, int participants);

// A study of two groups and two conditions, as group_design.h has it; participants.tsv says who is in which
// group, study_truth.json what was planted. Precondition: problemWith(design) is empty as well.
void writeGroupStudy(const std::string& folder, const DataSetOptions& options, const GroupDesign& design);

}  // namespace simulation

#endif
