#include "tests/calibration/chain_run.h"

#include <cmath>
#include <cstdint>
#include <iostream>
#include <numbers>
#include <sstream>
#include <stdexcept>

#include "request/request_file.h"
#include "study/progress_bar.h"
#include "study/study_run.h"

namespace calibration {
namespace {

namespace fs = std::filesystem;

// Time bases count up during a run: those of different data sets must not meet.
constexpr std::uint64_t kSeedStep = 1000003, kSeeds = std::uint64_t{1} << 31U;

std::string listOf(const std::vector<double>& numbers) {
  std::ostringstream text;
  for (const double number : numbers) text << (text.tellp() > 0 ? ", " : "") << number;
  return "[" + text.str() + "]";
}

// The constant of the search: 1, or the one for any dependence (fdr_thresholds.h).
std::string constantText(const Analysis& analysis, int voxels) {
  if (analysis.method == "plugin") return "cv_constant = " + std::to_string(analysis.cvConstant);
  std::ostringstream text;
  text << "fdr_constant = " << (analysis.cvConstant == 1 ? 1.0 : std::log(voxels) + std::numbers::egamma)
       << "\nfwe_draws = 0";
  return text.str();
}

std::string settingsText(const Analysis& analysis, int voxels) {
  std::ostringstream text;
  text << "[settings]\nmethod = '" << analysis.method << "'\norder = " << analysis.order << "\n"
       << constantText(analysis, voxels) << "\nq = " << listOf(analysis.qs)
       << "\nsurrogates = " << analysis.surrogates << "\nmap_types = ['REF2VOX']\n";
  return text.str();
}

std::string runsText(const DataSetting& setting) {
  const std::string target = "[[run]]\nname = 'target'\nbold = 'target.nii'\n";
  if (setting.referenceInside) return target + "mask = 'mask.nii.gz'\n";
  return "[[run]]\nname = 'source'\nbold = 'source.nii'\n" + target;
}

std::string conditionText(const DataSetting& setting, int intervals) {
  const int length = setting.volumes / intervals;
  std::ostringstream text;
  text << "[[condition]]\nname = '" << intervals << "'\nintervals = [";
  for (int n = 0; n < intervals; ++n) text << "[" << n * length + 1 << ", " << (n + 1) * length << "], ";
  text << "]\n";
  if (!setting.referenceInside) text << "pairs = [['source', 'target']]\n";
  return text.str();
}

std::string failureOf(const study::StudyOutcome& outcome) {
  std::string text;
  for (const std::string& failure : outcome.failures) text += failure + "; ";
  for (const study::ReferenceOutcome& reference : outcome.references) text += reference.message + " ";
  return text;
}

}  // namespace

std::string requestText(const SimulatedData& data, const Analysis& analysis) {
  std::string text = "prefix = 'simulated'\nfolder = 'results'\nwork_folder = 'work'\nseed = " +
                     std::to_string(data.seed() * kSeedStep % kSeeds) + "\n" +
                     settingsText(analysis, data.setting().voxels()) + runsText(data.setting()) +
                     "[[reference]]\nname = 'region'\nlabel_image = 'reference.nii.gz'\nlabels = ['1']\n";
  for (const int intervals : analysis.intervals) text += conditionText(data.setting(), intervals);
  return text;
}

std::vector<Discoveries> analyse(const SimulatedData& data, const Analysis& analysis) {
  const study::Request request =
      study::parseRequest(requestText(data, analysis), "simulated data", data.folder());
  study::StudyOptions options;
  options.program = TAVMAP_PROGRAM;
  options.version = TAVMAP_VERSION;
  study::ProgressBar progress(std::cerr, study::ProgressStyle::kQuiet);
  const study::StudyOutcome outcome = study::runStudy({request}, options, progress);
  if (outcome.failed()) throw std::runtime_error("the study failed: " + failureOf(outcome));
  const fs::path results = data.folder() / "results";
  const auto found = readDiscoveries(results / "simulated_seed-region_tavmap.json", data.driven());
  fs::remove_all(results);
  return found;
}

}  // namespace calibration
