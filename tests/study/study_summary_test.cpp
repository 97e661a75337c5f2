// What people read of a result: the summary and the end of the log.
#include "study/study_summary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "results/record_json.h"
#include "study/reference_job.h"
#include "tests/support/sample_plan.h"

namespace study {
namespace {

std::string summaryOf(const Record& record) {
  StudyOutcome outcome;
  ReferenceOutcome& reference = outcome.references.emplace_back();
  reference.request = "study.toml";
  reference.reference = record.reference;
  reference.done = true;
  reference.record = record;
  std::ostringstream out;
  printSummary(outcome, out);
  return out.str();
}

TEST(StudySummary, SaysEveryMapWithItsOwnNumbers) {
  EXPECT_EQ(
      summaryOf(sample_result::record()),
      "study.toml\nV1\n"
      "  faces: 115 effective volumes, 901 voxels computed\n"
      "    REF2VOX: q = 0.011: 61 voxels at 5.500 or more; q = 0.033: 63 voxels at 4.500 or more; "
      "peak -9.250 at (-2, 2, 4) mm in lobe\n"
      "      family-wise p of 0.05 or less: 57 voxels; 2 clusters of 58 voxels\n"
      "    DTAV_RC: no thresholds; peak 0.875 at (20, -20, 21) mm\n"
      "    direction: of 138 voxels that pass DTAV at q = 0.035, 67 keep their direction when it is tested "
      "with reversed time: V1 leads 33 and follows 34; 36 could not be judged\n"
      "  houses: 116 effective volumes, 911 voxels computed\n"
      "    INST: q = 0.012: 71 voxels at 6.500 or more; q = 0.034: 73 voxels at 6.250 or more; "
      "peak 8.750 at (-28, 30, 30) mm\n"
      "NOTE: " +
          std::string(kDirectionNote) + "\n");
}

// Eleven references are one too many.
TEST(StudySummary, OfManyReferencesHasALineEach) {
  StudyOutcome outcome;
  for (int i = 0; i < 11; ++i) {
    outcome.references.push_back(
        {"study.toml", "R" + std::to_string(i), true, i == 3, "", sample_result::record()});
  }
  outcome.references[1].done = false;
  outcome.references[1].message = "a full disk";
  outcome.references[2].record.conditions[0].maps[0].peakLabel.clear();
  outcome.references[5].record.conditions[0].maps[0].peakLabel = "none";
  outcome.references[4].record.conditions[0].voxels[static_cast<std::size_t>(StatusCode::kComputed)] = 0;
  outcome.cautions = {"careful"};
  const auto text = [&] {
    std::ostringstream out;
    printSummary(outcome, out);
    return out.str();
  };
  const std::string table = text();
  EXPECT_EQ(
      table.find(
          "study.toml\n"
          "  voxels outside the reference that pass at the largest q: 'faces' / 'houses'\n"
          "  reference  REF2VOX  INST    DTAV_RC  directions kept  largest REF2VOX\n"
          "  R0         63/n/a   n/a/73  n/a/n/a  67 of 138        peak -9.250 at (-2, 2, 4) mm in lobe\n"
          "  R1         FAILED: a full disk\n"
          "  R2         63/n/a   n/a/73  n/a/n/a  67 of 138        peak -9.250 at (-2, 2, 4) mm\n"
          "  R3 (kept)  63/n/a   n/a/73  n/a/n/a  67 of 138        peak -9.250 at (-2, 2, 4) mm in lobe\n"
          "  R4         63/n/a   n/a/73  n/a/n/a  67 of 138        no peak\n"
          "  R5         63/n/a   n/a/73  n/a/n/a  67 of 138        peak -9.250 at (-2, 2, 4) mm, in no "
          "label\n"),
      0U)
      << table;
  EXPECT_NE(table.find("in lobe\nEvery map, condition and q: *_tavmap.json and *_clusters.tsv in the output "
                       "folder\nNOTE: " +
                       std::string(kDirectionNote) + "\nWARNING: careful\n"),
            std::string::npos)
      << table;
  outcome.references.pop_back();
  EXPECT_NE(text().find("  faces: 115 effective volumes"), std::string::npos);
}

TEST(StudySummary, ThresholdsInWords) {
  const auto line = [](const std::vector<ThresholdResult>& thresholds) {
    Record record = sample_result::record();
    record.conditions[0].maps[0].thresholds = thresholds;
    const std::string text = summaryOf(record);
    const std::size_t begin = text.find("REF2VOX: ") + 9;
    return text.substr(begin, text.find("; peak", begin) - begin);
  };
  EXPECT_EQ(line({{0.1, std::nullopt, 0, 0}, {0.2, std::nullopt, 0, 0}}), "no voxel survives at any q");
  EXPECT_EQ(line({{0.1, std::nullopt, 0, 0}, {0.2, 1.5, 1, 1}}),
            "q = 0.1: no voxel survives; q = 0.2: 1 voxel at 1.500 or more");
  EXPECT_EQ(line({{0.1, 2.5, 3, 0}}), "q = 0.1: voxels of the reference alone");
}

TEST(StudySummary, WithoutComputedVoxelsThereIsNoPeak) {
  Record record = sample_result::record();
  record.conditions[0].maps[0].peak = std::numeric_limits<double>::quiet_NaN();
  record.conditions[1].voxels[static_cast<std::size_t>(StatusCode::kComputed)] = 0;
  const std::string text = summaryOf(record);
  EXPECT_NE(text.find("at 4.500 or more; no peak\n"), std::string::npos) << text;
  EXPECT_NE(text.find("0 voxels computed\n    INST: "), std::string::npos) << text;
  EXPECT_NE(text.find("at 6.250 or more; no peak\n"), std::string::npos) << text;
}

TEST(StudySummary, TheJsonHasTheRecordAsItsFileHasIt) {
  StudyOutcome outcome;
  outcome.references.push_back({"study.toml", "V1", true, true, "", sample_result::record()});
  outcome.references.push_back({"study.toml", "V2", false, false, "a full disk", {}});
  const auto json = summaryJson(outcome, "1.2.3");
  EXPECT_EQ(json["References"][0]["Record"].dump(2) + "\n", recordText(sample_result::record()));
  EXPECT_EQ(json["References"][0]["Kept"], true);
  EXPECT_EQ(json["References"][1]["Message"], "a full disk");
  EXPECT_FALSE(json["References"][1].contains("Record"));
  EXPECT_EQ(json["Failed"], true);
}

TEST(LogAppendix, SaysEveryNumberOfTheStudy) {
  const StudyPlan plan = sample_plan::plan();
  ReferenceResult result = sample_result::reference();
  result.conditions[0].maps[0].thresholds = {{0.011, 5.5, 62, 62}, {0.033, 4.5, 64, 63}};
  result.conditions[1].maps[0].thresholds = {{0.012, std::nullopt, 0, 0}};
  EXPECT_EQ(logAppendix(plan, 1, result),
            "\nMethod " + std::string(methodDescription(Method::kCalibrated)) +
                "\n"
                "Model order 4 (bic), 22 surrogates per voxel, every q divided by 1.375, 1002 draws of the "
                "family-wise error, seed 7001 (of this reference 7002), Tavmap 1.2.3\n"
                "\nRuns\n"
                "\ta: 156 volumes, TR 2.25 s, 6 dropped, 5 censored, 2 confounds regressed (3 degrees of "
                "freedom)\n"
                "\t\tvolume v above is volume v + 6 of the stored image\n"
                "\tb: 166 volumes, TR 1.75 s, 8 dropped, 7 censored, 1 confounds regressed (9 degrees of "
                "freedom)\n"
                "\t\tvolume v above is volume v + 8 of the stored image\n"
                "\tc: 176 volumes, TR 1.25 s, 10 dropped, 14 censored, 3 confounds regressed (16 degrees of "
                "freedom)\n"
                "\t\tvolume v above is volume v + 10 of the stored image\n"
                "\td: 186 volumes, TR 3.25 s, 17 dropped, 19 censored, 1 confounds regressed (20 degrees of "
                "freedom)\n"
                "\t\tvolume v above is volume v + 17 of the stored image\n"
                "\nEffective volumes (less the order per interval and what regressed confounds cost)\n"
                "\tfaces: 115 of 127\n"
                "\thouses: 116 of 128\n"
                "\nThresholds: faces\n"
                "\tREF2VOX, q = 0.011: 62 voxels reach the threshold 5.5, all outside the reference\n"
                "\tREF2VOX, q = 0.033: 64 voxels reach the threshold 4.5, 63 of them outside the reference\n"
                "\tREF2VOX, family-wise p of 0.05 or less: 57 voxels; 2 clusters of 58 voxels\n"
                "\nThresholds: houses\n"
                "\tINST, q = 0.012: no voxel survives\n"
                "\nDirections\n\tfaces: " +
                directionText(result.conditions[0].direction, "V1") + "\n\t" + kDirectionNote +
                ".\n"
                "\n"
                "WARNING: filtered\n"
                "WARNING: " +
                cautionsOf(plan, 1)[1] + "\nWARNING: note of V2\n");
}

}  // namespace
}  // namespace study
