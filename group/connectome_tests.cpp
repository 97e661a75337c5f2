#include "group/connectome_tests.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>

#include "bids/bids_names.h"
#include "connectome/edge_group.h"
#include "group/group_names.h"
#include "group/test_design.h"
#include "inference/level.h"
#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;

struct NamedMeasure {
  const char* name;  // as files have it
  connectome::Measure measure;
};
constexpr auto kMeasures =
    std::to_array<NamedMeasure>({{"Influence", connectome::Measure::kInfluence},
                                 {"Instantaneous", connectome::Measure::kInstantaneous},
                                 {"NetInfluence", connectome::Measure::kNet}});

connectome::Measure measureNamed(const GroupQuestion& question) {
  std::vector<std::string> known;
  for (const NamedMeasure& one : kMeasures) {
    if (question.edges == one.name) return one.measure;
    known.emplace_back(one.name);
  }
  throw InputError(fmt::format("test '{}': no measure of connectomes is named '{}'{}", question.name,
                               question.edges, suggestion(question.edges, known)));
}

// What tells tests apart, and whose matrices each has.
struct EdgeCell {
  std::string task, session, condition;  // its label
  auto operator<=>(const EdgeCell&) const = default;
};
struct MatrixPair {
  std::string plus, minus;  // files; minus is empty without a difference
};
using EdgeCells = std::map<EdgeCell, std::map<std::string, MatrixPair>>;

// Matrices of one measure, without those of statistics.
std::vector<fs::path> matricesBelow(const fs::path& outDir, const std::string& measure) {
  std::vector<fs::path> files;
  for (fs::recursive_directory_iterator entry(outDir), end; entry != end; ++entry) {
    const std::string name = entry->path().filename().string();
    if (entry->is_directory() && (name == kGroupFolder || name == "work" || name.starts_with(".")))
      entry.disable_recursion_pending();
    else if (name.ends_with(fmt::format("_meas-{}_relmat.tsv", measure)))
      files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class EdgeCellFinder {
 public:
  explicit EdgeCellFinder(const GroupQuestion& question)
      : question_(question), sides_(sidesOf(question.within)) {
    for (const std::string& condition : question.conditions) chosen_.push_back(bidsLabel(condition));
  }

  void add(const fs::path& file) {
    const BidsName name = parseBidsName(file.filename().string());
    const auto& leftOut = question_.leftOut;
    if (!name.has("sub") || std::find(leftOut.begin(), leftOut.end(), name.get("sub")) != leftOut.end())
      return;
    const std::string condition = name.get("contrast");
    if (sides_.empty()) {
      if (chosen_.empty() || std::find(chosen_.begin(), chosen_.end(), condition) != chosen_.end())
        put({name.get("task"), name.get("ses"), condition}, name.get("sub"), file, false);
    } else {
      const EdgeCell cell{name.get("task"), name.get("ses"), bidsLabel(question_.within)};
      if (condition == bidsLabel(sides_.first)) put(cell, name.get("sub"), file, false);
      if (condition == bidsLabel(sides_.second)) put(cell, name.get("sub"), file, true);
    }
  }

  // Only participants who have both sides, and cells with two of them.
  [[nodiscard]] EdgeCells cells() const {
    EdgeCells whole;
    for (const auto& [cell, members] : cells_) {
      std::map<std::string, MatrixPair> kept;
      for (const auto& [participant, pair] : members)
        if (!pair.plus.empty() && (sides_.empty() || !pair.minus.empty())) kept.emplace(participant, pair);
      if (kept.size() > 1) whole.emplace(cell, std::move(kept));
    }
    return whole;
  }

 private:
  void put(const EdgeCell& cell, const std::string& participant, const fs::path& file, bool isMinus) {
    MatrixPair& pair = cells_[cell][participant];
    std::string& place = isMinus ? pair.minus : pair.plus;
    if (!place.empty()) {
      throw InputError(fmt::format(
          "participant '{}' has several connectomes of one condition, such as {} and {}; keep one",
          participant, place, file.string()));
    }
    place = file.string();
  }

  const GroupQuestion& question_;
  Sides sides_;
  std::vector<std::string> chosen_;
  EdgeCells cells_;
};

connectome::GroupMatrices matricesOf(const std::vector<MatrixPair>& pairs, connectome::Measure measure) {
  std::vector<std::string> plus, minus;
  for (const MatrixPair& pair : pairs) {
    plus.push_back(pair.plus);
    if (!pair.minus.empty()) minus.push_back(pair.minus);
  }
  connectome::GroupMatrices matrices = connectome::readGroupMatrices(plus, measure);
  if (minus.empty()) return matrices;
  const connectome::GroupMatrices others = connectome::readGroupMatrices(minus, measure);
  if (others.nodes != matrices.nodes)
    throw InputError(fmt::format("{} and {} have other regions", plus[0], minus[0]));
  for (std::size_t i = 0; i < matrices.values.size(); ++i) matrices.values[i] -= others.values[i];
  return matrices;
}

std::string stemOf(const GroupQuestion& question, const EdgeCell& cell) {
  std::string stem;
  if (!cell.session.empty()) stem += fmt::format("ses-{}_", cell.session);
  if (!cell.task.empty()) stem += fmt::format("task-{}_", cell.task);
  return fmt::format("{}contrast-{}_desc-{}", stem, cell.condition, question.name);
}

inference::TestOptions optionsOf(const GroupInference& asked, const GroupDesign& design, int threads) {
  inference::TestOptions options;
  options.exchange = design.exchange;
  options.blocks = design.blocks;
  options.shuffles = asked.shuffles;
  options.seed = asked.seed;
  options.enhance = false;
  options.clusterFormingZ = asked.clusterFormingZ;
  options.smallestShare = asked.smallestShare;
  options.threads = threads;
  return options;
}

void count(const connectome::EdgeGroupResult& result, double level, EdgeTestOutcome& outcome) {
  for (const float p : result.test.pFwe)
    if (inference::isWithin(p, level)) ++outcome.edgesPassing;
  for (const connectome::EdgeComponent& component : result.components)
    if (component.pFwe <= level) ++outcome.componentsPassing;
  outcome.shuffles = result.test.shuffles;
}

EdgeTestOutcome testCell(const fs::path& outDir, const GroupQuestion& question,
                         const GroupInference& inference, const Participants& table, int threads,
                         const EdgeCell& cell, const std::map<std::string, MatrixPair>& members) {
  std::vector<std::string> labels;
  for (const auto& [participant, pair] : members) labels.push_back(participant);
  const GroupDesign design = groupDesign(question, labels, table);
  std::vector<MatrixPair> pairs;
  for (const std::size_t row : design.rows) pairs.push_back(members.at(labels[row]));
  const connectome::GroupMatrices matrices = matricesOf(pairs, measureNamed(question));
  EdgeTestOutcome outcome{question.name,
                          design.words,
                          cell.task,
                          cell.session,
                          cell.condition,
                          question.edges,
                          pairs.size(),
                          matrices.edges.size(),
                          0,
                          0,
                          0,
                          design.leftOut,
                          stemOf(question, cell)};
  try {
    const connectome::EdgeGroupResult result =
        connectome::testGroupEdges(design.model, matrices, optionsOf(inference, design, threads));
    count(result, inference.level, outcome);
    const fs::path folder = outDir / kGroupFolder;
    fs::create_directories(folder);
    connectome::writeGroupEdges(folder, outcome.stem, design.words, matrices, result);
  } catch (const std::invalid_argument& error) {
    throw InputError(
        fmt::format("test '{}', {} of {}: {}", question.name, question.edges, cell.condition, error.what()));
  }
  return outcome;
}

}  // namespace

std::vector<EdgeTestOutcome> runEdgeTests(const fs::path& outDir, const GroupQuestion& question,
                                          const GroupInference& inference, const Participants& participants,
                                          int threads) {
  (void)measureNamed(question);
  EdgeCellFinder finder(question);
  for (const fs::path& file : matricesBelow(outDir, question.edges)) finder.add(file);
  const EdgeCells cells = finder.cells();
  if (cells.empty()) {
    throw InputError(
        fmt::format("test '{}': fewer than two participants have a matrix *_meas-{}_relmat.tsv of what it "
                    "asks for below {}; run "
                    "'tavmap connectome' on each participant's request first",
                    question.name, question.edges, outDir.string()));
  }
  std::vector<EdgeTestOutcome> outcomes;
  for (const auto& [cell, members] : cells)
    outcomes.push_back(testCell(outDir, question, inference, participants, threads, cell, members));
  return outcomes;
}

}  // namespace study
