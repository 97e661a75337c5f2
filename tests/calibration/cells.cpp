#include "tests/calibration/cells.h"

#include <fmt/core.h>

namespace calibration {
namespace {

constexpr double kScannerNoise = 0.7;
// 2,048 voxels: with fewer the null draws of all of them say little of the tail that thresholds lie in.
constexpr int kSlicesOfDriven = 32;

CellSetting cell(const std::string& name, const std::string& words, const CourseKind& kind) {
  CellSetting setting;
  setting.name = name;
  setting.words = words;
  setting.reference = setting.voxel = kind;
  return setting;
}

void addSpectra(std::vector<CellSetting>& cells) {
  for (const int tenths : {3, 6, 9})
    cells.push_back(cell(fmt::format("ar{}", tenths), fmt::format("AR(1), .{}", tenths),
                         autoregressive({tenths / 10.0})));
  cells.push_back(cell("ar2-slow", "AR(2), a cycle in 12 volumes, radius .95", oscillating(12, 0.95)));
  cells.push_back(cell("ar2-fast", "AR(2), a cycle in 4 volumes, radius .9", oscillating(4, 0.9)));
  cells.push_back(cell("pink", "1/f", powerLaw(1)));
  cells.push_back(cell("pink15", "1/f^1.5", powerLaw(1.5)));
  cells.push_back(cell("heavy", "AR(1), .5, innovations t with 3 degrees of freedom",
                       autoregressive({0.5}, Innovations::kHeavyTailed)));
}

void addHaemodynamic(std::vector<CellSetting>& cells) {
  struct Sampling {
    double tr;
    int volumes;
  };
  for (const auto& [tr, volumes] : {Sampling{2, 100}, {2, 300}, {0.7, 400}, {0.7, 1200}}) {
    for (const double noise : {0.0, kScannerNoise}) {
      CellSetting setting = cell(fmt::format("haemo-{:g}-{}{}", tr, volumes, noise > 0 ? "-noise" : ""),
                                 fmt::format("haemodynamic response{}", noise > 0 ? " and white noise" : ""),
                                 haemodynamic(tr, noise));
      setting.trSeconds = tr;
      setting.volumes = volumes;
      cells.push_back(setting);
    }
  }
  CellSetting band = cell("band", "band-passed, .01 to .1 Hz", bandPassed(0.01, 0.1, 0.7));
  band.trSeconds = 0.7;
  band.volumes = 600;
  cells.push_back(band);
}

void addArtefacts(std::vector<CellSetting>& cells) {
  for (const Spikes spikes : {Spikes::kOwn, Spikes::kShared}) {
    for (const bool oneSign : {false, true}) {
      const char* whose = spikes == Spikes::kOwn ? "own" : "shared";
      const char* sign = oneSign ? "one sign" : "random signs";
      CellSetting setting = cell(fmt::format("spikes-{}-{}", whose, oneSign ? "one" : "random"),
                                 fmt::format("AR(1), .5, three spikes of 10 standard deviations, {}, {}",
                                             spikes == Spikes::kOwn ? "own" : "at shared volumes", sign),
                                 autoregressive({0.5}));
      setting.spikes = spikes;
      setting.oneSign = oneSign;
      setting.isUnrelated = spikes == Spikes::kOwn || !oneSign;
      cells.push_back(setting);
    }
  }
  CellSetting shocks =
      cell("shocks-shared-random",
           "AR(1), .5, three shocks of 10 standard deviations that fade as the noise does, at "
           "shared volumes, random signs",
           autoregressive({0.5}));
  shocks.spikes = Spikes::kShared;
  shocks.spikeMemory = 0.5;
  cells.push_back(shocks);
  CellSetting jump = cell("jump", "AR(1), .5, four times the standard deviation in the middle third of all",
                          autoregressive({0.5}));
  jump.jumpOfScale = true;
  cells.push_back(jump);
}

void addPreparation(std::vector<CellSetting>& cells) {
  for (const int confounds : {9, 36, 60}) cells.push_back(confoundCell(confounds));
  for (const Movement movement : {Movement::kScattered, Movement::kBursts}) {
    const bool bursts = movement == Movement::kBursts;
    CellSetting setting = cell(
        bursts ? "censored-bursts" : "censored-scattered",
        bursts ? "AR(1), .5, five bursts of 6 volumes censored" : "AR(1), .5, a tenth censored at random",
        autoregressive({0.5}));
    setting.movement = movement;
    cells.push_back(setting);
  }
}

void addPlaces(std::vector<CellSetting>& cells) {
  CellSetting field =
      cell("field", "haemodynamic and white noise, smooth in space, a signal common to all voxels",
           haemodynamic(2, kScannerNoise));
  field.smoothField = true;
  cells.push_back(field);
  CellSetting region = field;
  region.name = "region-mean";
  region.words = "the same, and the reference a mean of 30 voxels";
  region.regionVoxels = 30;
  cells.push_back(region);
}

void addUnequal(std::vector<CellSetting>& cells) {
  const auto add = [&](const char* name, const char* words, CourseKind reference, CourseKind voxel) {
    CellSetting setting = cell(name, words, reference);
    setting.voxel = voxel;
    cells.push_back(setting);
  };
  add("slow-white", "reference 1/f^1.5, voxels white", powerLaw(1.5), autoregressive({0.0}));
  add("white-slow", "reference white, voxels 1/f^1.5", autoregressive({0.0}), powerLaw(1.5));
  add("wave-ar", "reference AR(2) with a cycle in 12 volumes, voxels AR(1), .6", oscillating(12, 0.95),
      autoregressive({0.6}));
  add("haemo-ar", "reference haemodynamic, voxels AR(1), .9", haemodynamic(2, 0), autoregressive({0.9}));
}

CellSetting driven(const char* name, const char* words, int volumes, double coupling) {
  constexpr double kMemory = 0.5;
  CellSetting setting = cell(name, words, autoregressive({kMemory}));
  setting.volumes = volumes;
  setting.coupling = coupling;
  setting.memory = kMemory;
  setting.drivenShare = 0.1;
  setting.slices = kSlicesOfDriven;
  setting.isUnrelated = false;
  return setting;
}

}  // namespace

CellSetting confoundCell(int confounds) {
  CellSetting setting = cell(fmt::format("confounds{}", confounds),
                             fmt::format("haemodynamic and white noise, {} confounds regressed", confounds),
                             haemodynamic(2, kScannerNoise));
  setting.volumes = 156;
  setting.confounds = confounds;
  return setting;
}

CellSetting piecesCell() {
  CellSetting setting = driven("driven-pieces", "100 volumes and five pieces of 8", 160, 0.25);
  setting.intervals = {{1, 100}, {106, 113}, {117, 124}, {128, 135}, {139, 146}, {150, 157}};
  return setting;
}

std::vector<CellSetting> nullCells() {
  std::vector<CellSetting> cells;
  addSpectra(cells);
  addHaemodynamic(cells);
  addArtefacts(cells);
  addPreparation(cells);
  addPlaces(cells);
  addUnequal(cells);
  return cells;
}

std::vector<CellSetting> drivenCells() {
  std::vector<CellSetting> cells = {
      driven("driven-100", "100 volumes", 100, 0.3), driven("driven-200", "200 volumes", 200, 0.2),
      driven("driven-order2", "200 volumes, models of order 2", 200, 0.2), piecesCell()};
  cells[2].order = 2;
  return cells;
}

}  // namespace calibration
