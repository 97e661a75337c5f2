// Choices of a computation that are no part of the request record. The defaults are what the
// plug-in computes.
#ifndef TAVMAP_TAV_RUN_OPTIONS_H
#define TAVMAP_TAV_RUN_OPTIONS_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simo/burg.h"
#include "tav/fit_form.h"

namespace tav {

class LoadedVtc;

// How a threshold is found from observed and null magnitudes.
enum class ThresholdRule {
  kWalk,   // from the strongest voxel down to the first violation of the bound
  kStepUp  // the smallest magnitude that meets the bound (Benjamini & Hochberg 1995)
};

// Where surrogate courses come from.
enum class SurrogateKind {
  // Gaussian noise through a model of the analysis' order; each model sees the averages of all courses
  // fitted before it in the run.
  kPooledModels,
  // The course's own residuals with random signs through a model of the course, whatever the order of the
  // analysis (simo/residual_surrogates.h).
  kOwnResiduals
};

// What was done to the voxels of a VTC, and so is done to every surrogate of a course from it.
struct CourseTreatment {
  std::vector<simo::Stretch> known;  // volumes, 0-based, that models of the course rest on; ascending
  // Changes a course of all volumes in place; empty: nothing was done. Copies may be called at the same time.
  std::function<void(float*)> apply{};
};

struct RunOptions {
  FitForm fitForm = FitForm::kWritten;
  SurrogateKind surrogateKind = SurrogateKind::kPooledModels;
  int nullDraws = 1;  // surrogates per voxel, 1 ... 100
  ThresholdRule thresholdRule = ThresholdRule::kWalk;
  // True: the reference's own voxels, which are related to their mean by construction, are mapped but
  // take no part in the search for thresholds.
  bool searchOutsideReference = false;
  // With own residuals: by the VTCs' names in the request. A VTC that is not listed is known whole.
  std::map<std::string, CourseTreatment> treatments = {};
  // Above 0: divides every q of the step-up rule, instead of the request's constant.
  double fdrConstant = 0;
  // Surrogates whose whole maps are computed for the family-wise error, at most those of the request; 0:
  // none. In least squares only.
  int fweDraws = 0;
  // How many threads compute these maps, surrogates of references, thresholds of maps and, when all data are
  // in memory, voxels; nothing of it shows in results. With more than one, the store is asked for the values
  // of all maps of a condition before any is described.
  int threads = 1;
  // Whether each voxel of a map with thresholds gets the p of its value among the null values (null_p.h).
  bool nullP = false;
  // Whether each map of one measure gets z against the voxels' own null values (null_z.h), given two draws.
  bool nullZ = false;
  // Whether each map with thresholds says how their search went (search_curve.h). With the step-up rule only.
  bool searchCurve = false;
  // Empty: one sequence of random numbers for the whole run. Else a time base per reference of the
  // request, from which alone its surrogates and draws follow, whatever the other references are.
  std::vector<std::int64_t> voiTimeBases = {};

  // What the seeds of the one sequence are counted from; none: the environment or the clock
  // (simo/randomness.h), asked for each seed.
  std::optional<std::int64_t> timeBase = std::nullopt;
  // Which compute path fits the models: a name as TAVMAP_KERNEL takes it. Empty: what that variable
  // says, else the fastest.
  std::string kernel = "";
  // Where VTCs with relative names are; empty: in the working folder. Texts show the names alone.
  std::string vtcFolder = "";
  // VTCs that are in memory already, by their names in the request; others are opened.
  std::map<std::string, std::shared_ptr<const LoadedVtc>> loadedVtcs = {};
  // When it becomes true, the run throws Cancelled (at_once.h): between batches of voxels in memory,
  // surrogates and parts of the search for thresholds. Null: nothing calls it off.
  const std::atomic<bool>* cancel = nullptr;

  // Whether results are those of the plug-in, wherever data and random numbers come from.
  [[nodiscard]] bool isPlugin() const {
    return fitForm == FitForm::kWritten && surrogateKind == SurrogateKind::kPooledModels && nullDraws == 1 &&
           thresholdRule == ThresholdRule::kWalk && !searchOutsideReference && voiTimeBases.empty();
  }
};

}  // namespace tav

#endif
