#include "study/request_file.h"

namespace study {

std::string exampleRequest() {
  return R"(# A request for `tavmap run`. Paths are relative to this file. Lines that begin with "#" are
# comments; those with a key show its default.

prefix = "oneback"            # result files begin with it; entities such as "sub-01_task-oneback" are fine
folder = "results"            # where results go
#work_folder = "results/work" # imported runs, kept for the next time
#seed = 20240101              # without it a seed is drawn; it is stored with every result

[settings]
method = "calibrated"         # "calibrated": thresholds that keep their promise; "plugin": the plug-in's numbers
order = 1                     # 1 to 20, or a criterion that chooses it: "bic", "aic", "hqc"
#max_order = 8                # the highest order that a criterion tries
#order_sample = 500           # voxels whose joint models a criterion looks at
#null_draws = 20              # surrogates per voxel, 1 to 100 (method "calibrated")
#map_types = ["REF2VOX", "VOX2REF", "INST", "DTAV", "DTAV_IT", "DTAV_RC"]
q = [0.01, 0.05, 0.1]         # false discovery rates
#cv_constant = 2              # 2: valid under any dependence of voxels; 1: independent or positively dependent
#surrogates = 1000            # simulated reference courses, 10 to 10000
#discarded_time_points = 100  # warm-up of each simulation, 10 to 1000
#inclusion_threshold = 100    # a voxel's first value must exceed it (masked images are shifted above it)
#instantaneous_lower = 0.05   # DTAV_IT and DTAV_RC need at least this instantaneous influence
#rc_upper = 0.7               # DTAV_RC values above it become 0
#map_scale = 100              # factor of all maps but DTAV_RC

[[run]]                       # one block per run; several runs are pooled, never stitched together
name = "run1"
bold = "bold_small.nii.gz"    # 4-D NIfTI
mask = "mask_small.nii.gz"    # voxels to map; without it those whose first value exceeds inclusion_threshold
events = "events.tsv"         # needed by trial_types below
#tr = 2.0                     # seconds; needed when header and JSON sidecar disagree
#drop_volumes = 0             # leading volumes to leave out; "auto": those that the confounds table flags
#confounds = "confounds.tsv"  # table of preprocessing, for the keys below
#regress = ["24motion", "acompcor5"] # 6motion 24motion wmcsf gs 9p 36p acompcorN tcompcorN outliers, or columns
#fd_threshold = 0             # millimetres; volumes that moved more are censored, 0: none
#min_segment = 5              # shorter stretches between censored volumes are left out
#censor_before = 0            # volumes censored before each one that moved
#censor_after = 0             # and after it

[[reference]]                 # one block per region or atlas
label_image = "dseg_small.nii.gz"
labels = ["7Networks_LH_Vis_4"]  # names of the table beside the image, indices, or "all"
#label_table = "dseg_small.tsv"

#[[reference]]
#name = "seed"
#mask = "seed_mask.nii.gz"

#[[reference]]
#name = "sphere"
#centre_mm = [-20.0, -85.0, 0.0]
#radius_mm = 8.0

#[[reference]]
#name = "voxels"
#voxels = [[12, 8, 14], [12, 9, 14]]  # counted from 0

[[condition]]
name = "whole"
whole_run = true

[[condition]]
name = "pictures"
trial_types = ["face", "scene", "body", "house", "object", "scramble"]
delay_s = 4.0                 # shift for the haemodynamic delay
#join_gap_s = 2.0             # events closer than this form one block; default one TR
#min_volumes = 6              # shorter blocks are left out
#runs = ["run1"]              # default: all runs
#pairs = [["run1", "run2"]]   # reference from the first, voxels from the second, instead of runs

#[[condition]]
#name = "first half"
#intervals = [[1, 78]]        # volumes from 1, both ends included; or { run1 = [[1, 78]] }
)";
}

}  // namespace study
