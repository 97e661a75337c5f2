// A result of one reference in which every number and every text is different, so that none can stand
// for another unnoticed.
#ifndef TAVMAP_TESTS_SUPPORT_SAMPLE_RESULT_H
#define TAVMAP_TESTS_SUPPORT_SAMPLE_RESULT_H

#include <string>
#include <vector>

#include "results/result_json.h"

namespace sample_result {

inline study::RunPlan run(const std::string& name, double tr, int volumes, int dropped, int censored,
                          const std::vector<std::string>& confounds, int rank) {
  study::RunPlan plan;
  plan.request.name = name;
  plan.request.bold = "/data/raw/" + name + "_bold.nii.gz";
  plan.request.mask = "/data/masks/" + name + "_mask.nii.gz";
  plan.request.confounds = "/elsewhere/" + name + "_confounds.tsv";
  plan.volumes.name = name;
  plan.volumes.trSeconds = tr;
  plan.volumes.volumes = volumes;
  plan.volumes.dropped = dropped;
  plan.censored = censored;
  plan.confoundNames = confounds;
  plan.confoundRank = rank;
  plan.filters = {name + "Filter"};
  plan.vtcName = name + ".vtc";
  return plan;
}

inline std::vector<study::RunPlan> runs() {
  return {run("a", 2.25, 156, 6, 5, {"csf", "wm"}, 3), run("b", 1.75, 166, 8, 7, {"gs"}, 9),
          run("c", 1.25, 176, 10, 14, {"x", "y", "z"}, 16), run("d", 3.25, 186, 17, 19, {"cos00"}, 20)};
}

inline study::Request request() {
  study::Request request;
  request.title = "study.toml";
  request.output.folder = "/out";
  request.output.prefix = "sub-01";
  request.datasets = {{"raw", "/data/raw"}, {"all", "/data"}};
  study::Settings& s = request.settings;
  s.orderChoice = study::OrderChoice::kBic;
  s.order = 2;  // not the one in use
  s.nullDraws = 22;
  s.fdrConstant = 1.375;
  s.fweDraws = 1002;
  s.surrogates = 1001;
  s.discardedTimePoints = 101;
  s.inclusionThreshold = 103;
  s.instantaneousLower = 0.055;
  s.rcUpper = 0.77;
  s.mapScale = 104.5;
  s.highPass = 127.5;
  s.qValues = {0.011, 0.033};
  return request;
}

inline study::FamilyWiseResult familyWise() {
  study::FamilyWiseResult result;
  result.draws = 1003;
  result.clusterFormingP = 0.0015;
  result.clusterFormingLevel = 3.125;
  result.voxelFile = "faces_pfwe.nii.gz";
  result.clusterFile = "faces_pfwecluster.nii.gz";
  result.levels = {{0.05, 7.25, 57, 2, 58}, {0.06, 7.125, 59, 68, 60}};
  result.clusters = 80;
  result.largest = {{-9.5, {81, 82, 83}, {-84.5, 85.5, 86.5}, 87, 89.25, 0.0625},
                    {9.75, {92, 93, 94}, {-95.5, 96.5, 97.5}, 98, 99.25, 0.125}};
  return result;
}

inline study::ConditionResult faces() {
  study::ConditionResult condition;
  condition.name = "faces";
  condition.sets = {{"b", "a", {{23, 42}, {53, 88}}, 48}, {"c", "c", {{91, 160}}, 66}};
  condition.totalVolumes = 127;
  condition.effectiveVolumes = 115;
  condition.statusCounts = {900, 901, 902, 903, 904, 905};
  condition.statusFile = "faces_dseg.nii.gz";
  condition.surrogatesIllDefined = 31;
  condition.maps = {{tav::REF2VOX,
                     "faces_ref2vox.nii.gz",
                     {{0.011, 5.5, 62, 61}, {0.033, 4.5, 64, 63}},
                     -9.25,
                     {11, 12, 13},
                     {-1.5, 2.5, 3.5},
                     familyWise(),
                     "lobe",
                     "faces_passing.nii.gz",
                     "faces_thresholded.nii.gz",
                     "faces_p.nii.gz"},
                    {tav::DTAV_RC, "faces_rc.nii.gz", {}, 0.875, {15, 18, 21}, {19.5, -20.5, 21.25}}};
  condition.direction = {0.035, "faces_direction.nii.gz", {920, 33, 34, 35, 36}};
  condition.clustersFile = "faces_clusters.tsv";
  condition.evidenceFile = "faces_evidence.json";
  return condition;
}

inline study::ConditionResult houses() {
  study::ConditionResult condition;
  condition.name = "houses";
  condition.sets = {{"d", "d", {{24, 133}}, 106}};
  condition.totalVolumes = 128;
  condition.effectiveVolumes = 116;
  condition.statusCounts = {910, 911, 912, 913, 914, 915};
  condition.statusFile = "houses_dseg.nii.gz";
  condition.surrogatesIllDefined = 32;
  condition.maps = {{tav::INST,
                     "houses_inst.nii.gz",
                     {{0.012, 6.5, 72, 71}, {0.034, 6.25, 74, 73}},
                     8.75,
                     {25, 26, 27},
                     {-28.5, 29.5, 30.5}}};
  return condition;
}

inline study::ReferenceResult reference() {
  return {"V1", 44, 7002, {faces(), houses()}};
}

// Borrows its arguments.
inline study::ResultContext context(const study::Request& request, const std::vector<study::RunPlan>& runs) {
  return {request, runs, "1.2.3", 7001, 4, {"few volumes", "filtered"}};
}

inline study::Record record() {
  const study::Request asked = request();
  const std::vector<study::RunPlan> plans = runs();
  study::Record record = study::referenceRecord(context(asked, plans), reference(), "0123abcd");
  record.files = {{"x.nii.gz", 5001}, {"y.tsv", 5002}};
  return record;
}

}  // namespace sample_result

#endif
