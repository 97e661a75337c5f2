// Charts of what stands behind the maps of one condition.
#ifndef TAVMAP_REPORT_EVIDENCE_CHARTS_H
#define TAVMAP_REPORT_EVIDENCE_CHARTS_H

#include <string>
#include <vector>

#include "report/chart.h"
#include "results/evidence.h"
#include "results/record.h"

namespace report {

// Where the evidence stands, and which condition it is of.
struct EvidencePlace {
  std::string file;  // name in the output folder
  std::string id;    // of charts: "0-1"
};

// Observed against null values with the thresholds, and the search for them: two charts per map, or one.
[[nodiscard]] std::vector<Chart> mapCharts(const study::Evidence& evidence,
                                           const study::ConditionRecord& condition,
                                           const EvidencePlace& place);
// Spectrum with the surrogates' band, residuals of the reference's own model, motion: of every run.
[[nodiscard]] std::vector<Chart> runCharts(const study::Evidence& evidence, const EvidencePlace& place);
// Voxels of each slice that have no value, by reason; empty when all have one.
[[nodiscard]] std::vector<Chart> sliceCharts(const study::Evidence& evidence, const EvidencePlace& place);

}  // namespace report

#endif
