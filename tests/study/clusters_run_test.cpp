// Whole runs: clusters and images of what passes, found again from the effect maps and thresholds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "formats/nifti.h"
#include "formats/table.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;

class ClustersRun : public SmallStudyRun {
 protected:
  void compute(const std::string& settings, const std::string& reference = "A") {
    const fs::path request = scratch_.write(
        "c.toml", "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" +
                      settings +
                      "\n[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                      "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['" +
                      reference + "']\n");
    const ProgramResult result = run(request);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    out_ = result.out;
    record_ = study::readRecordFile((results() / ("small_seed-" + reference + "_tavmap.json")).string());
    status_ = labels(condition().statusFile);
  }
  [[nodiscard]] const study::ConditionRecord& condition() const { return record_.conditions.at(0); }
  std::vector<std::int32_t> labels(const std::string& file) const {
    return formats::readLabelImage((results() / file).string()).labels;
  }
  formats::Image3D image(const std::string& file) const {
    return formats::readImage((results() / file).string());
  }
  // Voxels of a map that pass at a level, by the files alone.
  std::vector<bool> passing(const formats::Image3D& map, const study::ThresholdResult& level) const {
    std::vector<bool> flags(map.values.size(), false);
    if (level.voxelsPassing == 0) return flags;
    const float threshold = static_cast<float>(level.threshold.value_or(0));
    for (std::size_t i = 0; i < flags.size(); ++i) {
      flags[i] = status_[i] == static_cast<int>(study::StatusCode::kComputed) && map.values[i] != 0 &&
                 std::abs(map.values[i]) >= threshold;
    }
    return flags;
  }
  study::Record record_;
  std::vector<std::int32_t> status_;
  std::string out_;
};

// Sizes of the clusters, descending: labels spread over neighbours until nothing changes.
std::vector<int> clusterSizes(const formats::Image3D& map, const std::vector<bool>& passing) {
  const io::GridSize& size = map.header.size;
  std::vector<std::size_t> root(passing.size());
  for (std::size_t i = 0; i < root.size(); ++i) root[i] = i;
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t a = 0; a < root.size(); ++a) {
      for (std::size_t b = 0; passing[a] && b < root.size(); ++b) {
        const auto p = size.voxelAt(a), q = size.voxelAt(b);
        const bool near =
            std::abs(p[0] - q[0]) <= 1 && std::abs(p[1] - q[1]) <= 1 && std::abs(p[2] - q[2]) <= 1;
        if (!passing[b] || !near || (map.values[a] > 0) != (map.values[b] > 0) || root[a] <= root[b])
          continue;
        root[a] = root[b], changed = true;
      }
    }
  }
  std::map<std::size_t, int> sizes;
  for (std::size_t i = 0; i < root.size(); ++i) {
    if (passing[i]) ++sizes[root[i]];
  }
  std::vector<int> list;
  for (const auto& [first, count] : sizes) list.push_back(count);
  std::sort(list.rbegin(), list.rend());
  return list;
}

TEST_F(ClustersRun, TheTableAndTheImagesHaveWhatPassesInTheMaps) {
  for (const char* method : {"method = 'calibrated'\nfwe_draws = 0", "method = 'plugin'"}) {
    fs::remove_all(results());
    compute(method, "B");  // which A leads: negative differences
    const auto table = formats::Table::read((results() / condition().clustersFile).string());
    std::size_t row = 0, negative = 0;
    for (const study::MapResult& map : condition().maps) {
      EXPECT_EQ(map.passingFile.empty(), map.thresholds.empty());
      if (map.thresholds.empty()) continue;
      const formats::Image3D values = image(map.file);
      const std::vector<std::int32_t> levels = labels(map.passingFile);
      const formats::Image3D thresholded = image(map.thresholdedFile);
      for (std::size_t i = 0; i < levels.size(); ++i)
        ASSERT_EQ(thresholded.values[i], levels[i] > 0 ? values.values[i] : 0) << map.thresholdedFile;
      int code = static_cast<int>(map.thresholds.size());
      for (const study::ThresholdResult& level : map.thresholds) {
        const std::vector<bool> passes = passing(values, level);
        for (std::size_t i = 0; i < passes.size(); ++i)
          ASSERT_EQ(passes[i], levels[i] >= code) << map.passingFile << " " << i;
        --code;
        std::size_t voxels = 0;
        for (const int size : clusterSizes(values, passes)) {
          ASSERT_LT(row, table.rows());
          EXPECT_EQ(table.cell(row, table.require("map")),
                    tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)]);
          EXPECT_EQ(table.number(row, table.require("q")), level.q);
          EXPECT_EQ(table.integer(row, table.require("voxels")), size);
          const int i = table.integer(row, table.require("peak_i"));
          const int j = table.integer(row, table.require("peak_j"));
          const int k = table.integer(row, table.require("peak_k"));
          EXPECT_EQ(static_cast<float>(table.number(row, table.require("peak")).value()), values.at(i, j, k));
          if (table.cell(row, table.require("sign")) == "negative") ++negative;
          voxels += static_cast<std::size_t>(size);
          ++row;
        }
        EXPECT_EQ(voxels, level.outsideReference) << map.file << " " << level.q;
      }
    }
    EXPECT_EQ(row, table.rows()) << method;
    EXPECT_GT(row, 5U) << method;
    EXPECT_GT(negative, 0U) << method;
  }
}

TEST_F(ClustersRun, PlacesHaveTheNamesOfTheLabelImage) {
  compute("fwe_draws = 0");
  const auto table = formats::Table::read((results() / condition().clustersFile).string());
  const auto names = [&](const char* column) {
    std::set<std::string> found;
    for (std::size_t row = 0; row < table.rows(); ++row) found.insert(table.cell(row, table.require(column)));
    return found;
  };
  EXPECT_EQ(names("peak_label").count("B"), 1U);  // led by A, as planted
  EXPECT_EQ(names("peak_label").count("n/a"), 0U);
  EXPECT_NE(out_.find(" mm in B\n"), std::string::npos) << out_;
  EXPECT_EQ(read("small_seed-A_desc-whole_clusters.json")["LabelImage"], "bids:input:dseg.nii.gz");
}

// By the files alone: a larger value has a smaller p, and what passes is far below any level.
TEST_F(ClustersRun, SingleVoxelsHaveAP) {
  compute("fwe_draws = 0");
  for (const study::MapResult& map : condition().maps) {
    ASSERT_EQ(map.pFile.empty(), map.thresholds.empty());
    if (map.pFile.empty()) continue;
    const formats::Image3D values = image(map.file), p = image(map.pFile);
    std::vector<std::pair<float, float>> both;
    for (std::size_t i = 0; i < values.values.size(); ++i) {
      ASSERT_EQ(std::isnan(p.values[i]), status_[i] != static_cast<int>(study::StatusCode::kComputed));
      if (!std::isnan(p.values[i])) both.emplace_back(std::abs(values.values[i]), p.values[i]);
    }
    std::sort(both.begin(), both.end());
    EXPECT_TRUE(std::is_sorted(both.begin(), both.end(),
                               [](const auto& a, const auto& b) { return a.second < b.second; }));
    EXPECT_GE(both.front().second, 0);
    // The planted influence, or its opposite; the emptied difference is held against the whole one.
    const float least = map.type == tav::DTAV_IT ? 0 : 2;
    EXPECT_GT(both.back().second, least) << map.pFile;
    const auto sidecar = read(study::OutputNames::sidecarOf(map.pFile));
    EXPECT_EQ(sidecar["StatisticFile"], map.file);
    EXPECT_FALSE(sidecar.contains("Thresholds"));
    EXPECT_EQ(sidecar["Units"],
              "-log10 of a probability; NaN where the status map says anything but \"computed\"");
  }
}

// For groups: a place against its own null values, also one whose every value is large.
TEST_F(ClustersRun, MeasuresHaveZAndDifferencesNone) {
  compute("fwe_draws = 0");
  for (const study::MapResult& map : condition().maps) {
    const bool isMeasure = map.type == tav::REF2VOX || map.type == tav::VOX2REF || map.type == tav::INST;
    ASSERT_EQ(map.zFile.empty(), !isMeasure);
    if (!isMeasure) continue;
    const formats::Image3D z = image(map.zFile);
    std::vector<double> known;
    for (std::size_t i = 0; i < z.values.size(); ++i) {
      ASSERT_EQ(std::isnan(z.values[i]), status_[i] != static_cast<int>(study::StatusCode::kComputed));
      if (!std::isnan(z.values[i])) known.push_back(static_cast<double>(z.values[i]));
    }
    std::sort(known.begin(), known.end());
    EXPECT_LT(std::abs(known[known.size() / 2]), 1) << "most voxels are unrelated";
    EXPECT_LT(known.back(), 6) << "as far as the null values reach";
    EXPECT_GT(known.back(), map.type == tav::REF2VOX ? 2.5 : 0) << "the planted influence";
    EXPECT_FALSE(read(study::OutputNames::sidecarOf(map.zFile)).contains("Thresholds"));
    EXPECT_EQ(record_.files.count(map.zFile), 1U);
  }
}

TEST_F(ClustersRun, OneDrawGivesNoZ) {
  compute("fwe_draws = 0\nnull_draws = 1");
  for (const study::MapResult& map : condition().maps) EXPECT_EQ(map.zFile, "");
}

TEST_F(ClustersRun, ThePluginsProcedureHasNeitherPNorZ) {
  compute("method = 'plugin'");
  for (const study::MapResult& map : condition().maps) EXPECT_EQ(map.pFile + map.zFile, "");
}

TEST_F(ClustersRun, TheRecordNamesEveryFileAndItIsThere) {
  compute("fwe_draws = 0");
  int images = 0;
  const auto isThere = [&](const std::string& name) {
    EXPECT_EQ(record_.files.count(name), 1U) << name;
    EXPECT_TRUE(fs::exists(results() / name)) << name;
  };
  for (const char* ending : {".tsv", ".json"})
    isThere(std::string("small_seed-A_desc-whole_clusters") + ending);
  for (const study::MapResult& map : condition().maps) {
    if (map.passingFile.empty()) continue;
    const std::string begin = map.passingFile.substr(0, map.passingFile.find('.'));
    for (const char* ending : {".nii.gz", ".tsv", ".json"}) isThere(begin + ending);
    for (const std::string& file : {map.thresholdedFile, map.pFile}) {
      isThere(file);
      isThere(study::OutputNames::sidecarOf(file));
    }
    EXPECT_EQ(read(begin + ".json")["StatisticFile"], map.file);
    EXPECT_EQ(read(begin + ".json")["Labels"]["3"], "passes at q = 0.01");
    ++images;
  }
  EXPECT_GE(images, 3);
}

}  // namespace
