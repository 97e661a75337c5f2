#include "tests/calibration/simulated_data.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "formats/nifti_writer.h"

namespace calibration {
namespace {

constexpr int kWarmUp = 100;
constexpr double kReferenceAutocorrelation = 0.5;
constexpr double kBase = 10000, kSpread = 100;  // intensities
constexpr double kVoxelMm = 3, kTrMs = 2000;

using Course = std::vector<double>;

formats::ImageHeader headerOf(const DataSetting& setting) {
  formats::ImageHeader header;
  header.size = {setting.across, setting.across, kMappedSlices + 1};
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = kVoxelMm;
  header.sformCode = 1;
  return header;
}

// Indices of the region: a square in the middle of the last slice.
std::vector<std::size_t> regionOf(const DataSetting& setting) {
  const int first = (setting.across - setting.regionAcross) / 2;
  std::vector<std::size_t> region;
  for (int y = first; y < first + setting.regionAcross; ++y) {
    for (int x = first; x < first + setting.regionAcross; ++x) {
      region.push_back(static_cast<std::size_t>((kMappedSlices * setting.across + y) * setting.across + x));
    }
  }
  return region;
}

class Simulator {
 public:
  Simulator(const DataSetting& setting, unsigned seed)
      : setting_(setting),
        length_(static_cast<std::size_t>(kWarmUp + setting.volumes)),
        generator_(seed),
        reference_(autoregressive(kReferenceAutocorrelation, nullptr)) {}

  std::vector<bool> drawDriven() {
    const auto voxels = static_cast<std::size_t>(setting_.voxels());
    std::vector<bool> driven(voxels, false);
    std::fill_n(driven.begin(), std::lround(setting_.drivenShare * setting_.voxels()), true);
    std::shuffle(driven.begin(), driven.end(), generator_);
    driven.resize(headerOf(setting_).size.voxels(), false);
    return driven;
  }

  Course voxel(bool driven) {
    return autoregressive(setting_.autocorrelation, driven ? &reference_ : nullptr);
  }

  // One course per voxel of the region.
  std::vector<Course> region(std::size_t voxels) {
    std::vector<Course> courses;
    for (std::size_t i = 0; i < voxels; ++i) courses.push_back(voxel(false));
    for (std::size_t t = 0; t < length_; ++t) {
      double mean = 0;
      for (const Course& course : courses) mean += course[t] / static_cast<double>(voxels);
      for (Course& course : courses) course[t] += reference_[t] - mean;
    }
    return courses;
  }

 private:
  Course autoregressive(double coefficient, const Course* driver) {
    Course course(length_, 0.0);
    for (std::size_t t = 1; t < length_; ++t) {
      course[t] = coefficient * course[t - 1] + normal_(generator_);
      if (driver != nullptr) course[t] += setting_.coupling * (*driver)[t - 1];
    }
    return course;
  }

  const DataSetting& setting_;
  std::size_t length_;
  std::mt19937_64 generator_;
  std::normal_distribution<double> normal_;
  Course reference_;
};

// A series in the making: 0 wherever no course is put.
class Series {
 public:
  explicit Series(const DataSetting& setting) : header_(headerOf(setting)) {
    header_.volumes = setting.volumes;
    header_.trMs = kTrMs;
    values_.resize(header_.size.voxels() * static_cast<std::size_t>(setting.volumes));
  }

  void put(std::size_t voxel, const Course& course) {
    const std::size_t voxels = header_.size.voxels();
    for (std::size_t t = 0; t * voxels < values_.size(); ++t) {
      values_[t * voxels + voxel] = static_cast<float>(kBase + kSpread * course[kWarmUp + t]);
    }
  }

  void write(const std::filesystem::path& file) const {
    formats::NiftiWriter writer(file.string(), header_, formats::Durability::kCached);
    writer.writeValues(values_.data(), values_.size());
    writer.commit();
  }

 private:
  formats::ImageHeader header_;
  std::vector<float> values_;
};

// 1 for the region, and for the first `mapped` voxels.
void writeLabels(const DataSetting& setting, const std::vector<std::size_t>& region, std::size_t mapped,
                 const std::filesystem::path& file) {
  formats::LabelImage image{headerOf(setting), {}};
  image.header.dataType = formats::DataType::kUint8;
  image.labels.resize(image.header.size.voxels(), 0);
  std::fill_n(image.labels.begin(), mapped, 1);
  for (const std::size_t voxel : region) image.labels[voxel] = 1;
  formats::writeLabelImage(file.string(), image);
}

}  // namespace

SimulatedData::SimulatedData(const DataSetting& setting, unsigned seed) : setting_(setting), seed_(seed) {
  Simulator simulator(setting_, seed);
  driven_ = simulator.drawDriven();
  Series target(setting_), source(setting_);
  const auto mapped = static_cast<std::size_t>(setting_.voxels());
  for (std::size_t i = 0; i < mapped; ++i) target.put(i, simulator.voxel(driven_[i]));
  const std::vector<std::size_t> region = regionOf(setting_);
  const std::vector<Course> courses = simulator.region(region.size());
  if (setting_.referenceInside) {
    // Left out by the mask alone.
    for (std::size_t i = mapped; i < driven_.size(); ++i) target.put(i, simulator.voxel(false));
    writeLabels(setting_, region, mapped, folder() / "mask.nii.gz");
  }
  Series& holder = setting_.referenceInside ? target : source;
  for (std::size_t i = 0; i < region.size(); ++i) holder.put(region[i], courses[i]);
  writeLabels(setting_, region, 0, folder() / "reference.nii.gz");
  target.write(folder() / "target.nii");
  if (!setting_.referenceInside) source.write(folder() / "source.nii");
}

}  // namespace calibration
