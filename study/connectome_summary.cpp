#include "study/connectome_summary.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

namespace study {
namespace {

void printMeasure(const connectome::MeasureRecord& measure, const std::vector<double>& q, std::ostream& out) {
  out << fmt::format("  {}: ", measure.measure);
  if (measure.passing.back() == 0) {
    out << fmt::format("no edge of {} passes at q = {}", measure.edges, q.back());
  } else {
    for (std::size_t i = 0; i < q.size(); ++i)
      out << fmt::format("{}{} edges at q = {}", i > 0 ? ", " : "", measure.passing[i], q[i]);
    out << fmt::format(" of {}", measure.edges);
  }
  out << fmt::format("; {} with a family-wise p of .05 or less\n", measure.familyWise);
}

}  // namespace

void printConnectome(const ConnectomeOutcome& outcome, std::ostream& out) {
  const connectome::Record& record = outcome.record;
  out << fmt::format("{}: {} regions{}\n", record.title, record.nodes, outcome.kept ? ", kept" : "");
  for (const std::string& name : record.undefined) out << fmt::format("  without a series: {}\n", name);
  for (const connectome::ConditionRecord& condition : record.conditions) {
    out << fmt::format("{}: {} effective volumes\n", condition.name, condition.effectiveVolumes);
    for (const connectome::MeasureRecord& measure : condition.measures) printMeasure(measure, record.q, out);
    out << fmt::format("  direction supported with reversed time in {} of {} pairs tested\n",
                       condition.pairsSupported, condition.pairsTested);
  }
  for (const std::string& warning : record.warnings) out << "WARNING: " << warning << "\n";
  out << fmt::format("Record: {}\n", outcome.recordFile.string());
}

nlohmann::ordered_json connectomeSummaryJson(const ConnectomeOutcome& outcome) {
  return {{"Record", outcome.recordFile.string()},
          {"Kept", outcome.kept},
          {"Connectome", nlohmann::ordered_json::parse(connectome::recordText(outcome.record))}};
}

}  // namespace study
