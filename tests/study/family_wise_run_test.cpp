// Family-wise p-values of `tavmap run` against a literal count: every surrogate against every voxel, by
// least squares written out.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <set>

#include "formats/nifti.h"
#include "request/request_file.h"
#include "results/record_json.h"
#include "study/engine_request.h"
#include "study/study_plan.h"
#include "tav/memory_store.h"
#include "tav/tav.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using Course = std::vector<double>;
using Map = std::vector<double>;

constexpr int kDraws = 40;

void detrend(Course& course) {
  const double n = static_cast<double>(course.size()), middle = (n - 1) / 2;
  double mean = 0, slope = 0, squares = 0;
  for (const double value : course) mean += value / n;
  for (std::size_t t = 0; t < course.size(); ++t) {
    const double at = static_cast<double>(t) - middle;
    slope += at * course[t], squares += at * at;
  }
  for (std::size_t t = 0; t < course.size(); ++t)
    course[t] -= mean + slope / squares * (static_cast<double>(t) - middle);
}

// Squared errors of `target` given its own past and, unless null, another's, at lag 1.
double errorOf(const Course& target, const Course* other) {
  double yy = 0, yl = 0, ll = 0, ym = 0, lm = 0, mm = 0;
  for (std::size_t t = 1; t < target.size(); ++t) {
    const double y = target[t], l = target[t - 1], m = other == nullptr ? 0 : (*other)[t - 1];
    yy += y * y, yl += y * l, ll += l * l, ym += y * m, lm += l * m, mm += m * m;
  }
  if (other == nullptr) return yy - yl * yl / ll;
  const double det = ll * mm - lm * lm;
  return yy - (yl * (yl * mm - ym * lm) + ym * (ym * ll - yl * lm)) / det;
}

double influence(const Course& from, const Course& to) {
  return std::log(errorOf(to, nullptr) / errorOf(to, &from));
}

class KeepsSurrogates : public tav::RunObserver {
 public:
  void onReferences(const std::vector<std::unique_ptr<tav::VoiTc>>& voiTcs) override {
    const simo::Matrix<float>& all = voiTcs.at(0)->surrogates;
    for (int s = 0; s < kDraws; ++s) {
      const float* const row = all[all.rowBase + s] + all.colBase;
      courses.emplace_back(row, row + small_study::kVolumes);
      detrend(courses.back());
    }
  }
  std::vector<Course> courses;
};

class FamilyWiseRun : public SmallStudyRun {
 protected:
  void SetUp() override {
    SmallStudyRun::SetUp();
    request_ = scratch_.write("one.toml",
                              "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 60\nfwe_draws = 40\n"
                              "q = [0.1, 0.2]\nmap_types = ['REF2VOX', 'DTAV', 'DTAV_RC']\n"
                              "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                              "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n");
    result_ = run(request_);
    ASSERT_EQ(result_.exitCode, 0) << result_.err;
    record_ = study::readRecordFile((results() / "small_seed-A_tavmap.json").string());
    status_ = formats::readLabelImage((results() / record_.conditions.at(0).statusFile).string());
  }

  // The study's own surrogates, from an engine that computes no whole maps.
  std::vector<Course> surrogates() const {
    const study::StudyPlan plan = study::planStudy(study::readRequestFile(request_), 5, TAVMAP_VERSION);
    tav::RunOptions options = study::engineOptions(plan.request.settings);
    options.vtcFolder = plan.workFolder.string();
    options.timeBase = seedOf(plan, 0);
    options.voiTimeBases = {seedOf(plan, 0)};
    options.treatments = study::courseTreatments(plan.runs);
    options.fweDraws = 0;
    KeepsSurrogates observer;
    tav::MemoryStore store;
    std::ostringstream errors;
    const tav::TAV_Pars pars = study::engineRequest(plan.request.settings, plan.order, plan.runs,
                                                    plan.conditions, {&plan.regions[0]}, "x");
    EXPECT_EQ(tav::Computer(options, &observer, &store).computeTAVs(pars, errors), tav::kSuccess)
        << errors.str();
    return observer.courses;
  }

  bool takesPart(std::size_t voxel) const {
    return status_.labels[voxel] == static_cast<std::int32_t>(study::StatusCode::kComputed);
  }

  // Whole maps of every draw; 0 where a voxel takes no part.
  std::vector<Map> nullMaps(bool difference) {
    const Series bold = readSeries(folder() / "bold1.nii.gz");
    const std::size_t voxels = bold.header.size.voxels();
    const std::vector<Course> references = surrogates();
    std::vector<Map> maps(references.size(), Map(voxels, 0));
    for (std::size_t v = 0; v < voxels; ++v) {
      if (!takesPart(v)) continue;
      Course voxel;
      for (std::size_t t = 0; t < small_study::kVolumes; ++t)
        voxel.push_back(static_cast<double>(bold.values[t * voxels + v]));
      detrend(voxel);
      for (std::size_t s = 0; s < maps.size(); ++s) {
        maps[s][v] = 100 * influence(references[s], voxel);
        if (difference) maps[s][v] -= 100 * influence(voxel, references[s]);
      }
    }
    return maps;
  }

  const study::MapResult& mapOf(tav::MapType type) const {
    for (const study::MapResult& map : record_.conditions[0].maps)
      if (map.type == type) return map;
    throw std::runtime_error("no such map");
  }
  std::vector<float> image(const std::string& file) const {
    return formats::readImage((results() / file).string()).values;
  }
  // Masses of the connected voxels of one sign, by the first voxel of each.
  std::map<std::size_t, double> masses(const Map& map, double level) const {
    std::map<std::size_t, double> found;
    std::set<std::size_t> seen;
    for (std::size_t v = 0; v < map.size(); ++v) {
      if (std::abs(map[v]) >= level && seen.count(v) == 0) found[v] = massFrom(v, map, level, seen);
    }
    return found;
  }
  double massFrom(std::size_t voxel, const Map& map, double level, std::set<std::size_t>& seen) const {
    seen.insert(voxel);
    double mass = std::abs(map[voxel]) - level;
    const auto a = status_.header.size.voxelAt(voxel);
    for (std::size_t other = 0; other < map.size(); ++other) {
      const auto b = status_.header.size.voxelAt(other);
      const bool touches =
          std::abs(a[0] - b[0]) <= 1 && std::abs(a[1] - b[1]) <= 1 && std::abs(a[2] - b[2]) <= 1;
      const bool same = (map[voxel] < 0) == (map[other] < 0) && std::abs(map[other]) >= level;
      if (touches && same && seen.count(other) == 0) mass += massFrom(other, map, level, seen);
    }
    return mass;
  }

  fs::path request_;
  ProgramResult result_;
  study::Record record_;
  formats::LabelImage status_;
};

// p lies between the counts with and without the draws that equal the value but for rounding.
void expectCount(double p, const std::vector<double>& draws, double value, const std::string& what) {
  int least = 1, most = 1;
  for (const double draw : draws) least += draw > value * 1.001, most += draw > value * 0.999;
  EXPECT_GE(p * (1 + kDraws), least - 1e-3) << what;
  EXPECT_LE(p * (1 + kDraws), most + 1e-3) << what;
}

TEST_F(FamilyWiseRun, PCountsWholeMapsOfSurrogates) {
  for (const tav::MapType type : {tav::REF2VOX, tav::DTAV}) {
    const study::MapResult& map = mapOf(type);
    std::vector<double> largest;
    for (const Map& null : nullMaps(type == tav::DTAV)) {
      double most = 0;
      for (const double value : null) most = std::max(most, std::abs(value));
      largest.push_back(most);
    }
    ASSERT_EQ(largest.size(), static_cast<std::size_t>(kDraws));
    const std::vector<float> values = image(map.file), p = image(map.familyWise.voxelFile);
    std::set<float> different;
    for (std::size_t v = 0; v < values.size(); ++v) {
      EXPECT_EQ(std::isnan(p[v]), !takesPart(v)) << v;
      if (!takesPart(v)) continue;
      expectCount(static_cast<double>(p[v]), largest, std::abs(static_cast<double>(values[v])),
                  map.file + " " + std::to_string(v));
      different.insert(p[v]);
    }
    EXPECT_GE(different.size(), 2U);
    EXPECT_EQ(*different.begin(), 1.0F / (1 + kDraws));  // the planted influence
  }
}

TEST_F(FamilyWiseRun, PCountsTheLargestClustersOfWholeMaps) {
  for (const tav::MapType type : {tav::REF2VOX, tav::DTAV}) {
    const study::FamilyWiseResult& found = mapOf(type).familyWise;
    const double level = found.clusterFormingLevel;
    std::vector<double> largest;
    for (const Map& null : nullMaps(type == tav::DTAV)) {
      double most = 0;
      for (const auto& [first, mass] : masses(null, level)) most = std::max(most, mass);
      largest.push_back(most);
    }
    const std::vector<float> values = image(mapOf(type).file), p = image(found.clusterFile);
    Map observed(values.size(), 0);
    for (std::size_t v = 0; v < values.size(); ++v)
      if (takesPart(v)) observed[v] = static_cast<double>(values[v]);
    const auto clusters = masses(observed, level);
    EXPECT_EQ(found.clusters, clusters.size());
    ASSERT_GT(clusters.size(), 0U);
    for (const auto& [first, mass] : clusters)
      expectCount(static_cast<double>(p[first]), largest, mass, found.clusterFile);
    for (std::size_t v = 0; v < p.size(); ++v) {
      EXPECT_EQ(std::isnan(p[v]), !takesPart(v)) << v;
      const bool outside = takesPart(v) && std::abs(observed[v]) < level;
      EXPECT_TRUE(!outside || p[v] == 1) << v;
    }
  }
}

TEST_F(FamilyWiseRun, TheRecordCountsWhatTheImagesShow) {
  for (const study::MapResult& map : record_.conditions[0].maps) {
    const study::FamilyWiseResult& found = map.familyWise;
    EXPECT_EQ(found.empty(), map.type == tav::DTAV_RC);
    if (found.empty()) continue;
    EXPECT_EQ(found.draws, kDraws);
    ASSERT_EQ(found.levels.size(), 3U);
    const std::vector<float> voxels = image(found.voxelFile), clusters = image(found.clusterFile);
    for (const study::FamilyWiseLevel& level : found.levels) {
      const auto passing = [&](const std::vector<float>& p) {
        return static_cast<std::size_t>(std::count_if(
            p.begin(), p.end(), [&](float one) { return static_cast<double>(one) <= level.alpha + 1e-6; }));
      };
      EXPECT_EQ(level.voxelsPassing, passing(voxels)) << found.voxelFile << " " << level.alpha;
      EXPECT_EQ(level.voxelsInClusters, passing(clusters)) << found.clusterFile << " " << level.alpha;
    }
    EXPECT_GT(found.levels[0].voxelsPassing, 0U);
  }
}

TEST_F(FamilyWiseRun, PeopleReadIt) {
  const study::FamilyWiseResult& found = mapOf(tav::REF2VOX).familyWise;
  EXPECT_NE(result_.out.find("      family-wise p of 0.05 or less: " +
                             std::to_string(found.levels[0].voxelsPassing) + " voxel"),
            std::string::npos)
      << result_.out;
  const auto sidecar = read("small_seed-A_contrast-wholeRef2Vox_stat-pfwe_statmap.json");
  EXPECT_EQ(sidecar["FamilyWise"]["Draws"], kDraws);
  EXPECT_EQ(sidecar["FamilyWiseDraws"], kDraws);
  EXPECT_EQ(sidecar["FDRConstant"], 1.5);
  std::ifstream log(results() / "small_A.log");
  const std::string text((std::istreambuf_iterator<char>(log)), {});
  EXPECT_NE(text.find("FDRConstant= 1.5"), std::string::npos);
  EXPECT_NE(text.find("every q divided by 1.5, 40 draws of the family-wise error"), std::string::npos);
}

// Switched off, and with the plug-in's method, nothing of it is there; the rest of the numbers stays.
TEST_F(FamilyWiseRun, CanBeSwitchedOff) {
  const study::Record with = record_;
  std::ifstream stream(request_);
  std::string text((std::istreambuf_iterator<char>(stream)), {});
  text.replace(text.find("fwe_draws = 40"), 14, "fwe_draws = 0");
  ASSERT_EQ(run(scratch_.write("off.toml", text), {"--force"}).exitCode, 0);
  const study::Record off = study::readRecordFile((results() / "small_seed-A_tavmap.json").string());
  for (std::size_t i = 0; i < off.conditions[0].maps.size(); ++i) {
    study::MapResult map = with.conditions[0].maps[i];
    map.familyWise = {};
    EXPECT_EQ(off.conditions[0].maps[i], map);
  }
  for (const auto& [name, size] : off.files) EXPECT_EQ(name.find("pfwe"), std::string::npos) << name;
}

}  // namespace
