// A small data set for whole runs: two runs of 12 x 10 x 8 voxels, a mask, a label image with three
// regions, events. Region "A" drives region "B" at lag 1; everything else is autocorrelated noise.
#ifndef TAVMAP_TESTS_SUPPORT_SMALL_STUDY_H
#define TAVMAP_TESTS_SUPPORT_SMALL_STUDY_H

#include <array>
#include <filesystem>
#include <string>

namespace small_study {

inline constexpr std::array<int, 3> kDims = {12, 10, 8};
inline constexpr int kVolumes = 160;

// Writes bold1.nii.gz, bold2.nii.gz, mask.nii.gz, dseg.nii.gz, dseg.tsv, events.tsv. The affine is
// oblique, the voxels are anisotropic, x is stored descending.
void writeTo(const std::filesystem::path& folder);

// A 4-D image like bold1, at any path; another seed gives other data. level: intensity.
void writeBold(const std::filesystem::path& file, unsigned seed, double level = 1000, double trMs = 2000,
               int volumes = kVolumes);
void writeMask(const std::filesystem::path& file);
void writeRegions(const std::filesystem::path& image);  // and the table beside it

// A request over both runs and the three regions; `settings` are lines of [settings].
std::string request(const std::string& settings = "", const std::string& more = "");

// Number of voxels of region "A", "B", "C".
int regionVoxels();
bool inMask(int x, int y, int z);

}  // namespace small_study

#endif
