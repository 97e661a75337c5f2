#include "tests/calibration/cell_data.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>

#include "formats/nifti_writer.h"
#include "tests/calibration/course_changes.h"

namespace calibration {
namespace {

constexpr double kBase = 10000, kSpread = 100;  // intensities
constexpr double kVoxelMm = 3;
constexpr std::size_t kSpikes = 3, kBursts = 5, kBurst = 6, kVolumesPerScatter = 10;
constexpr double kMovedMm = 1, kStillMm = 0.1, kThresholdMm = 0.5;
constexpr double kConfoundMemory = 0.6;

// Time bases count up during a run: those of different data sets must not meet.
constexpr std::uint64_t kSeedStep = 1000003, kSeeds = std::uint64_t{1} << 31U;

std::vector<std::size_t> movedVolumes(Movement movement, std::size_t volumes, Generator& generator) {
  if (movement == Movement::kScattered) return drawVolumes(volumes / kVolumesPerScatter, volumes, generator);
  std::vector<std::size_t> moved;
  // One burst in every fifth of the run, so that none meet.
  for (std::size_t burst = 0; burst < kBursts; ++burst) {
    const std::size_t share = volumes / kBursts;
    const std::size_t first = burst * share + drawVolumes(1, share - kBurst, generator)[0];
    for (std::size_t t = first; t < first + kBurst; ++t) moved.push_back(t);
  }
  return moved;
}

Course meanOf(const std::vector<Course>& courses) {
  Course mean(courses[0].size(), 0.0);
  for (const Course& course : courses)
    for (std::size_t t = 0; t < mean.size(); ++t) mean[t] += course[t] / static_cast<double>(courses.size());
  return mean;
}

formats::ImageHeader headerOf(const CellSetting& setting) {
  formats::ImageHeader header;
  header.size = {kCellAcross, kCellAcross, setting.slices + 1};
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = kVoxelMm;
  header.sformCode = 1;
  header.volumes = setting.volumes;
  header.trMs = 1000 * setting.trSeconds;
  return header;
}

void put(const std::vector<Course>& courses, std::size_t first, std::size_t gridVoxels,
         std::vector<float>& values) {
  for (std::size_t i = 0; i < courses.size(); ++i)
    for (std::size_t t = 0; t < courses[i].size(); ++t)
      values[t * gridVoxels + first + i] = static_cast<float>(kBase + kSpread * courses[i][t]);
}

std::string voxelList(int count, int slice) {
  std::ostringstream text;
  for (int i = 0; i < count; ++i)
    text << "[" << i % kCellAcross << ", " << i / kCellAcross << ", " << slice << "], ";
  return text.str();
}

}  // namespace

CellData::CellData(const CellSetting& setting, unsigned seed) : setting_(setting), seed_(seed) {
  Generator generator(seed);
  drawCourses(generator);
  drive();
  if (setting_.confounds > 0) addConfounds(generator);
  if (setting_.movement != Movement::kNone) addMovement(generator);
  reference_ = meanOf(region_);
  write();
  if (!confounds_.empty() || !movement_.empty()) writeConfounds();
}

template <typename Change>
void CellData::forEachCourse(Change change) {
  for (Course& course : voxels_) change(course);
  for (Course& course : region_) change(course);
}

void CellData::drawCourses(Generator& generator) {
  const auto volumes = static_cast<std::size_t>(setting_.volumes);
  for (std::size_t i = 0; i < setting_.voxels(); ++i) voxels_.push_back(setting_.voxel(volumes, generator));
  for (int i = 0; i < setting_.regionVoxels; ++i) region_.push_back(setting_.reference(volumes, generator));
  if (setting_.smoothField) {
    smoothInSpace(kCellAcross, voxels_);
    addShared(setting_.voxel(volumes, generator), voxels_, generator);
  }
  if (setting_.regionVoxels > 1) addShared(setting_.reference(volumes, generator), region_, generator);
  if (setting_.jumpOfScale) forEachCourse(raiseMiddle);
  const auto shared = drawVolumes(kSpikes, volumes, generator);
  forEachCourse([&](Course& course) {
    if (setting_.spikes == Spikes::kNone) return;
    const bool own = setting_.spikes == Spikes::kOwn;
    addSpikes(own ? drawVolumes(kSpikes, volumes, generator) : shared,
              {setting_.oneSign, setting_.spikeMemory}, course, generator);
  });
}

void CellData::drive() {
  driven_ =
      static_cast<std::size_t>(std::lround(setting_.drivenShare * static_cast<double>(setting_.voxels())));
  const Course driver = meanOf(region_);
  for (std::size_t i = 0; i < driven_; ++i) {
    double response = 0;
    for (std::size_t t = 1; t < driver.size(); ++t) {
      response = setting_.memory * response + setting_.coupling * driver[t - 1];
      voxels_[i][t] += response;
    }
  }
}

void CellData::addConfounds(Generator& generator) {
  const CourseKind kind = autoregressive({kConfoundMemory});
  for (int i = 0; i < setting_.confounds; ++i)
    confounds_.push_back(kind(static_cast<std::size_t>(setting_.volumes), generator));
  std::normal_distribution<double> weights;
  forEachCourse([&](Course& course) {
    for (const Course& confound : confounds_) {
      const double weight = weights(generator);
      for (std::size_t t = 0; t < course.size(); ++t) course[t] += weight * confound[t];
    }
  });
}

void CellData::addMovement(Generator& generator) {
  const auto volumes = static_cast<std::size_t>(setting_.volumes);
  const auto moved = movedVolumes(setting_.movement, volumes, generator);
  movement_.assign(volumes, kStillMm);
  for (const std::size_t t : moved) movement_[t] = kMovedMm;
  forEachCourse([&](Course& course) { addSpikes(moved, {true, 0}, course, generator); });
}

void CellData::write() const {
  const formats::ImageHeader header = headerOf(setting_);
  const std::size_t gridVoxels = header.size.voxels();
  std::vector<float> values(gridVoxels * static_cast<std::size_t>(setting_.volumes), 0.0F);
  put(voxels_, 0, gridVoxels, values);
  put(region_, setting_.voxels(), gridVoxels, values);
  formats::NiftiWriter writer((folder() / "run.nii").string(), header, formats::Durability::kCached);
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

void CellData::writeConfounds() const {
  std::ostringstream table;
  table << "framewise_displacement";
  for (std::size_t i = 0; i < confounds_.size(); ++i) table << "\tconfound" << i;
  for (std::size_t t = 0; t < reference_.size(); ++t) {
    table << "\n" << (movement_.empty() ? kStillMm : movement_[t]);
    for (const Course& confound : confounds_) table << "\t" << confound[t];
  }
  table << "\n";
  static_cast<void>(scratch_.write("confounds.tsv", table.str()));
}

std::string CellData::requestText() const {
  std::ostringstream text;
  text << "prefix = 'cell'\nfolder = 'results'\nwork_folder = 'work'\nseed = " << seed_ * kSeedStep % kSeeds
       << "\n[settings]\norder = " << setting_.order << "\n[[run]]\nname = 'run'\nbold = 'run.nii'\n";
  if (!confounds_.empty() || !movement_.empty()) text << "confounds = 'confounds.tsv'\n";
  if (!confounds_.empty()) text << "regress = ['confound*']\n";
  if (!movement_.empty()) text << "fd_threshold = " << kThresholdMm << "\n";
  text << "[[reference]]\nname = 'reference'\nvoxels = [" << voxelList(setting_.regionVoxels, setting_.slices)
       << "]\n"
       << "[[condition]]\nname = 'all'\n";
  if (setting_.intervals.empty()) return text.str() + "whole_run = true\n";
  text << "intervals = [";
  for (const auto& [first, last] : setting_.intervals) text << "[" << first << ", " << last << "], ";
  return text.str() + "]\n";
}

}  // namespace calibration
