// The anatomy that belongs to a preprocessed run.
#ifndef TAVMAP_BIDS_BIDS_ANATOMY_H
#define TAVMAP_BIDS_BIDS_ANATOMY_H

#include <filesystem>

#include "bids/bids_layout.h"

namespace study {

// The preprocessed T1w image in the run's space below the same derivative: in "anat" of its session, else of
// its participant; sub-X[_ses-Y]_space-S[_res-R]_desc-preproc_T1w.nii.gz, of the run's resolution where there
// is one. The space "T1w" is that of the image without a space. Empty: there is none, or the run's name has
// no space.
[[nodiscard]] std::filesystem::path findAnatomy(const BidsRun& run);

}  // namespace study

#endif
