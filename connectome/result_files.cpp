#include "connectome/result_files.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "connectome/node_table.h"
#include "connectome/table_text.h"
#include "formats/atomic_file.h"

namespace connectome {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kFamilyWiseLevel = 0.05;
constexpr const char* kShape =
    "Rows are sources, columns are targets, both in the order of the names in the first line and of the "
    "table of nodes; n/a "
    "where there is nothing, as on the diagonal";

class ConditionFiles {
 public:
  ConditionFiles(const FileContext& context, ConditionRecord& condition)
      : context_(context), condition_(condition) {}

  std::string write(const std::string& what, const std::string& text, Json sidecar) const {
    const std::string stem = fmt::format("{}_contrast-{}_{}", context_.prefix, context_.conditionLabel, what);
    formats::writeTextFile((context_.folder / (stem + ".tsv")).string(), text);
    sidecar.update(commonJson());
    formats::writeTextFile((context_.folder / (stem + ".json")).string(), sidecar.dump(2) + "\n");
    return stem + ".tsv";
  }

  std::string writeMatrix(const std::string& what, const EdgeMatrix& matrix, const std::string& words) const {
    const std::string text = matrixText(context_.nodes, [&](std::size_t row, std::size_t column) {
      return numberText(matrix.at(row, column));
    });
    return write(what + "_relmat", text, {{"Description", words}, {"Shape", kShape}});
  }

 private:
  [[nodiscard]] Json commonJson() const {
    const Record& record = context_.record;
    return {{"Condition", condition_.name},
            {"Runs", condition_.runs},
            {"Samples", condition_.samples},
            {"EffectiveVolumes", condition_.effectiveVolumes},
            {"ModelOrder", record.order},
            {"ModelOrderChosenBy", record.orderChosenBy},
            {"SurrogatesPerNode", record.surrogates},
            {"ConditionalOn", record.givenSeries},
            {"FDRConstant", record.fdrConstant},
            {"Seed", record.seed},
            {"Warnings", record.warnings},
            {"GeneratedBy", "Tavmap " + record.version}};
  }

  const FileContext& context_;
  const ConditionRecord& condition_;
};

std::string pWords(bool isParametric) {
  if (isParametric) return "by the F distribution of a fit with white, normal errors";
  return "(1 + null values of all edges that reach it) / (1 + null values), each value divided by the mean "
         "null value of "
         "its own edge; surrogates of either end against the other";
}

MeasureRecord writeMeasure(const ConditionFiles& files, const FileContext& context,
                           const ConditionResult& result, Measure measure) {
  const MeasureResult& of = result.of(measure);
  const bool isParametric = context.record.surrogates == 0;
  const std::string label = measureLabel(measure), begin = "meas-" + label;
  MeasureRecord record{
      label, of.tests.edges, {}, edgesWithin(of.tests.pFamilyWise, measure, kFamilyWiseLevel), 0, {}, {}, {},
      {}};
  for (const double q : context.record.q) record.passing.push_back(edgesWithin(of.tests.q, measure, q));
  for (const double value : of.values.values)
    if (std::isfinite(value)) record.largest = std::max(record.largest, std::abs(value));
  record.file = files.writeMatrix(begin, of.values, measureWords(measure, context.record.givenSeries));
  record.pFile =
      files.writeMatrix(begin + "_stat-p", of.tests.p, "p of each edge by itself, " + pWords(isParametric));
  record.qFile = files.writeMatrix(
      begin + "_stat-q", of.tests.q,
      "the smallest rate of false discoveries over all edges at which each passes (Benjamini "
      "& Hochberg 1995, times FDRConstant)");
  record.familyWiseFile =
      files.writeMatrix(begin + "_stat-pfwe", of.tests.pFamilyWise,
                        isParametric ? "family-wise p over all edges: p times their number"
                                     : "family-wise p over all edges: (1 + draws whose largest value of all "
                                       "edges reaches it) / (1 + draws)");
  return record;
}

std::string directionText(const FileContext& context, const ConditionResult& result) {
  const std::size_t nodes = context.nodes.size();
  return matrixText(context.nodes, [&](std::size_t row, std::size_t column) {
    return row == column ? "n/a" : std::to_string(static_cast<int>(result.directions[row * nodes + column]));
  });
}

Json directionJson() {
  Json json{{"Description",
             "of each pair whose net influence passes at the largest q: whether its direction survives "
             "reversed time"},
            {"Shape", kShape}};
  for (int code = 0; code <= 4; ++code)
    json["Levels"][std::to_string(code)] = directionWords(static_cast<EdgeDirection>(code));
  return json;
}

void countDirections(const ConditionResult& result, std::size_t nodes, ConditionRecord& condition) {
  for (std::size_t row = 0; row < nodes; ++row) {
    for (std::size_t column = row + 1; column < nodes; ++column) {
      const EdgeDirection code = result.directions[row * nodes + column];
      condition.pairsTested += code != EdgeDirection::kNotTested ? 1 : 0;
      condition.pairsSupported +=
          code == EdgeDirection::kRowLeads || code == EdgeDirection::kColumnLeads ? 1 : 0;
    }
  }
}

}  // namespace

const char* measureLabel(Measure measure) {
  constexpr std::array<const char*, kMeasures.size()> kLabels = {"Influence", "Instantaneous",
                                                                 "NetInfluence"};
  return kLabels[static_cast<std::size_t>(measure)];
}

std::string measureWords(Measure measure, const std::vector<std::string>& given) {
  std::string behind;
  for (const std::string& name : given) behind += (behind.empty() ? ", given the past of " : ", ") + name;
  if (measure == Measure::kInfluence)
    return fmt::format("linear influence of the row's region on the column's{} (Geweke's F)", behind);
  if (measure == Measure::kNet)
    return fmt::format(
        "influence of the row's region on the column's less that of the column's on the row's{}", behind);
  return fmt::format("instantaneous influence between the two regions{}{}", behind,
                     given.empty() ? "" : " and its present");
}

const char* directionWords(EdgeDirection direction) {
  constexpr std::array<const char*, 5> kWords = {"not tested", "the row's region leads",
                                                 "the column's region leads", "not supported", "not judged"};
  return kWords[static_cast<std::size_t>(direction)];
}

void writeCondition(const FileContext& context, const ConditionResult& result, ConditionRecord& condition) {
  const ConditionFiles files(context, condition);
  const double q = context.record.q.back();
  for (const Measure measure : kMeasures)
    condition.measures.push_back(writeMeasure(files, context, result, measure));
  countDirections(result, context.nodes.size(), condition);
  condition.directionFile =
      files.write("meas-Direction_relmat", directionText(context, result), directionJson());
  condition.nodesFile =
      files.write("nodes", nodeTable(context.nodes, context.order, result, q), nodeColumns(q));
  condition.edgesFile = files.write("edges", edgeTable(context.nodes, result, q), edgeColumns(q));
}

}  // namespace connectome
