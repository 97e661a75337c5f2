#include "results/output_folder.h"

#include "formats/atomic_file.h"

namespace study {
namespace {

constexpr const char* kReadme =
    "Maps of directed influence between reference regions and every voxel, made by Tavmap.\n\n"
    "*_stat-effect_statmap.nii.gz   one effect map each; its JSON sidecar says direction, model, thresholds\n"
    "*_desc-thresholded_stat-effect_statmap.nii.gz   the same where it passes at the largest q\n"
    "*_stat-p_statmap.nii.gz        -log10 of the p of each voxel by itself\n"
    "*_stat-z_statmap.nii.gz        excess over each voxel's own null values, for groups\n"
    "*_stat-reversed_statmap.nii.gz dTAV minus that of reversed time, for groups\n"
    "*_stat-pfwe_statmap.nii.gz     family-wise p of each voxel, *_stat-pfwecluster_* of its cluster\n"
    "*Passing_dseg.nii.gz           which voxels pass at which q; codes in the .tsv beside it\n"
    "*_clusters.tsv                 clusters and peaks of the voxels that pass; columns in the .json beside "
    "it\n"
    "*Status_dseg.nii.gz            why each voxel has the value it has; codes likewise\n"
    "*Direction_dseg.nii.gz         whose lead is supported by a test with reversed time; codes likewise\n"
    "*_evidence.json                what stands behind the maps: histograms, spectra, residuals\n"
    "*_timeseries.tsv               the reference's mean time course after preparation\n"
    "*_boldref.nii.gz, *_T1w.nii.gz images to draw maps on\n"
    "*_tavmap.json                  everything about one reference; written last\n"
    "*_report.html                  everything to read, in one page; figures/ has its pictures\n"
    "*_request.toml                 what was asked for; `tavmap run` on it, in its place, gives the same\n"
    "*.tav, *.log                   the same maps as one file with the text of the computation\n"
    "*_connectome.json, *_relmat.tsv, *_nodes.tsv, *_edges.tsv   every region with every region\n"
    "group_tavmap.tsv               thresholds, counts and peaks of all records, once the group level has "
    "run\n\n"
    "Names of statistic maps follow a draft of the standard that other tools use as well; validators\n"
    "are told by .bidsignore.\n";

// Names that no published version of the standard knows yet, or never will.
constexpr const char* kIgnored =
    "*.tav\n*.log\n*_tavmap.json\n*_tavmap.tsv\n*_statmap.*\n*_seed-*\n*_desc-mean_boldref.*\n"
    "*_desc-anatomy_T1w.*\n*_request.toml\n*_report.html\nindex.html\n*_connectome.*\n*_relmat.*\n*_nodes.*"
    "\n*_edges.*\nfigures/\nwork/\n";

}  // namespace

void writeUnlessForeign(const std::filesystem::path& file, const std::string& text) {
  if (std::filesystem::exists(file) &&
      formats::readTextFile(file.string()).find("avmap") == std::string::npos)
    return;
  formats::writeTextFile(file.string(), text);
}

void explainOutputFolder(const std::filesystem::path& folder) {
  writeUnlessForeign(folder / "README", kReadme);
  writeUnlessForeign(folder / ".bidsignore", kIgnored);
}

}  // namespace study
