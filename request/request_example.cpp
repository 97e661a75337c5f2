#include <fmt/core.h>

#include <algorithm>

#include "request/request_file.h"
#include "request/settings_table.h"

namespace study {
namespace {

constexpr const char* kBeforeSettings =
    R"(# A request for `tavmap run`. Paths are relative to this file. Lines that begin with "#" are
# comments; those with a key show its default.

prefix = "oneback"            # result files begin with it; entities such as "sub-01_task-oneback" are fine
folder = "results"            # where results go
#work_folder = "results/work" # imported runs, kept for the next time
#seed = 20240101              # without it a seed is drawn; it is stored with every result
#anatomy = "t1_small.nii.gz"  # for pictures, in the space of the runs on any grid; changes no number

[settings]
)";

constexpr const char* kBehindSettings = R"(
#[connectome]                 # of `tavmap connectome` alone
#surrogates = 1000            # per region, 100 to 10000
#condition_on = ["global signal"] # or names of references; "all others" for every other reference

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
#label_table = "dseg_small.tsv" # columns index and name, or a table of FreeSurfer, MRtrix, FSL (XML) or Schaefer
#probability = 0.5            # label_image has one volume per label: its least probability in a voxel

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

constexpr std::size_t kColumnOfWords = 30;

// "#surrogates = 1000            # simulated reference courses, 10 to 10000"
std::string settingLine(const Setting& row, const Settings& settings) {
  std::string line = fmt::format("{}{} = {}", row.shown ? "" : "#", row.key, settingText(row, settings));
  std::string words = row.words;
  if (words.empty()) return line + "\n";
  const std::string range = "{range}";
  const std::size_t at = words.find(range);
  if (at != std::string::npos) words.replace(at, range.size(), rangeText(row));
  line.resize(std::max(line.size() + 1, kColumnOfWords), ' ');
  return fmt::format("{}# {}\n", line, words);
}

// Every setting of its method with its default.
std::string exampleSettings() {
  const Settings settings;
  std::string lines;
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr && canBeAsked(row, settings.method)) lines += settingLine(row, settings);
  }
  return lines;
}

}  // namespace

std::string exampleRequest() {
  return kBeforeSettings + exampleSettings() + kBehindSettings;
}

}  // namespace study
