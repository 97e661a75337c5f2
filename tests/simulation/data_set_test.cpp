// Whole data sets: complete, repeatable, and with the planted coefficients in the files.
#include "simulation/data_set.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "formats/file_error.h"
#include "formats/nifti.h"
#include "formats/voi_list.h"
#include "formats/vtc_export.h"
#include "simulation/truth.h"
#include "tests/simulation/normal_equations.h"
#include "tests/support/scratch.h"

namespace {

using simulation::DataSetOptions;
using simulation::writeDataSet;

DataSetOptions smallOptions() {
  DataSetOptions options;
  options.head.grid = {13, 14, 12};
  options.volumes = 80;
  return options;
}

TEST(DataSet, HasAllFilesOfARunAndOfTheHead) {
  const Scratch folder;
  writeDataSet(folder.path(), smallOptions());
  std::set<std::string> names;
  for (const auto& [name, text] : filesBelow(folder.folder())) names.insert(name);
  EXPECT_EQ(names,
            (std::set<std::string>{"anatomy.nii.gz", "mask.nii.gz", "dseg.nii.gz", "dseg.tsv", "truth.json",
                                   "answers.txt", "answers-protocol.txt", "run-1_bold.nii.gz", "run-1.vtc",
                                   "run-1.vtc.json", "run-1.prt", "run-1_events.tsv", "run-2_bold.nii.gz",
                                   "run-2.vtc", "run-2.vtc.json", "run-2.prt", "run-2_events.tsv"}));
  EXPECT_TRUE(std::filesystem::is_directory(folder.file("maps")));
}

TEST(DataSet, IsTheSameForTheSameSeedAndAnotherForAnother) {
  const Scratch first, second, other;
  DataSetOptions options = smallOptions();
  writeDataSet(first.path(), options);
  writeDataSet(second.path(), options);
  EXPECT_TRUE(filesBelow(first.folder()) == filesBelow(second.folder()));
  options.seed = 2;
  writeDataSet(other.path(), options);
  for (const char* name : {"run-1.vtc", "run-2.vtc", "anatomy.nii.gz"})
    EXPECT_FALSE(filesBelow(first.folder()).at(name) == filesBelow(other.folder()).at(name)) << name;
  EXPECT_FALSE(filesBelow(first.folder()).at("run-1.vtc") == filesBelow(first.folder()).at("run-2.vtc"));
}

TEST(DataSet, LabelImageGivesVoisWithTheReferenceFirst) {
  const Scratch folder;
  writeDataSet(folder.path(), smallOptions());
  EXPECT_EQ(formats::readImageHeader(folder.file("dseg.nii.gz")).intentCode, formats::kLabelIntent);
  const formats::LabelVois vois = formats::loadVois(folder.file("dseg.nii.gz"));
  const simulation::Truth truth = simulation::readTruth(folder.file("truth.json"));
  ASSERT_EQ(vois.list.vois.size(), truth.regions.size());
  for (std::size_t k = 0; k < truth.regions.size(); ++k) {
    EXPECT_EQ(vois.list.vois[k].name, truth.regions[k].model.name);
    EXPECT_EQ(vois.list.vois[k].voxels.size(), truth.regions[k].voxels);
  }
  EXPECT_TRUE(vois.unnamed.empty());
  EXPECT_TRUE(vois.absent.empty());
}

TEST(DataSet, SeriesHasTheVolumesAndTheRepetitionTimeAskedFor) {
  const Scratch folder;
  DataSetOptions options = smallOptions();
  options.trMs = 1250;
  writeDataSet(folder.path(), options);
  const formats::ImageHeader image = formats::readImageHeader(folder.file("run-2_bold.nii.gz"));
  EXPECT_EQ(image.volumes, 80);
  EXPECT_EQ(image.trMs, 1250);
  const VTC_Header vtc = formats::readVtcFileHeader(folder.file("run-2.vtc"));
  EXPECT_EQ(vtc.nrOfVolumes, 80);
  EXPECT_EQ(vtc.tr, 1250);
}

// The mean course of a region's voxels, in the VTC, without its straight line.
std::vector<double> regionCourse(const Scratch& folder, const formats::Voi& voi, std::size_t mostVoxels) {
  const std::string bytes = contentOf(folder.file("run-1.vtc"));
  const VTC_Header header = formats::readVtcFileHeader(folder.file("run-1.vtc"));
  const auto volumes = static_cast<std::size_t>(header.nrOfVolumes);
  std::vector<double> course(volumes, 0);
  const std::size_t count = std::min(mostVoxels, voi.voxels.size());
  for (std::size_t v = 0; v < count; ++v) {
    const auto [x, y, z] = voi.voxels[v];
    const std::size_t cell = static_cast<std::size_t>((z * header.yEnd + y) * header.xEnd + x);
    for (std::size_t t = 0; t < volumes; ++t) {
      float value = 0;
      std::memcpy(&value, bytes.data() + header.dataOffset + (cell * volumes + t) * sizeof value,
                  sizeof value);
      course[t] += static_cast<double>(value) / static_cast<double>(count);
    }
  }
  return least_squares::detrended(course);
}

// Least squares on the file: the reference on its past and the driving regions' means, the means
// of the driven regions on their past and the reference.
TEST(DataSet, PlantedCoefficientsAreInTheVtc) {
  const Scratch folder;
  DataSetOptions options = smallOptions();
  options.runs = 1;
  options.volumes = 4000;
  writeDataSet(folder.path(), options);
  const simulation::Truth truth = simulation::readTruth(folder.file("truth.json"));
  const formats::LabelVois vois = formats::loadVois(folder.file("dseg.nii.gz"));
  using least_squares::past, least_squares::present;
  const double tolerance = 4.5 / std::sqrt(4000.0);
  const std::vector<double> reference = regionCourse(folder, vois.list.vois[0], 9999);
  std::vector<std::vector<double>> pasts = {past(reference)};
  for (std::size_t k = 1; k < truth.regions.size(); ++k) {
    pasts.push_back(past(regionCourse(folder, vois.list.vois[k], 9999)));
    const std::vector<double> voxel = regionCourse(folder, vois.list.vois[k], 1);
    const auto found = least_squares::fit({past(voxel), past(reference)}, present(voxel));
    EXPECT_NEAR(found.weights[0], truth.regions[k].model.autoregression, tolerance) << k;
    EXPECT_NEAR(found.weights[1], truth.regions[k].model.follow, tolerance) << k;
  }
  const auto found = least_squares::fit(pasts, present(reference));
  EXPECT_NEAR(found.weights[0], truth.regions[0].model.autoregression, tolerance);
  for (std::size_t k = 1; k < truth.regions.size(); ++k)
    EXPECT_NEAR(found.weights[k], truth.regions[k].model.drive, 2.5 * tolerance) << k;
}

TEST(DataSet, RefusesWhatItCannotSimulateInWords) {
  const auto problemOf = [](auto change) {
    DataSetOptions options;
    change(options);
    return problemWith(options);
  };
  EXPECT_EQ(problemWith(DataSetOptions{}), "");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.runs = 0; }), "the number of runs must be from 1 to 99");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.volumes = 69; }),
            "the number of volumes must be from 70 to 30000");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.head.grid.y = 11; }),
            "every extent of the grid must be from 12 to 256");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.trMs = 0; }),
            "the repetition time must be from 1 to 60000 ms");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.strength = -1; }), "the strength must be from 0 to 1.5");
  EXPECT_EQ(problemOf([](DataSetOptions& o) { o.head.voxelMm = 0; }), "a voxel must measure 0.1 to 100 mm");
}

TEST(DataSet, FolderThatCannotBeMadeIsAFaultOfTheSystem) {
  const Scratch folder;
  std::ofstream(folder.file("file")) << "in the way";
  try {
    writeDataSet(folder.file("file/below"), smallOptions());
    FAIL() << "no error";
  } catch (const formats::FileError& error) {
    EXPECT_EQ(error.fault(), formats::Fault::kSystem);
    EXPECT_NE(error.reason().find("cannot create the folder"), std::string::npos);
  }
}

}  // namespace
