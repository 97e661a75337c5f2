#include "group/group_tests.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>

#include "formats/file_error.h"
#include "formats/json_file.h"
#include "group/group_cells.h"
#include "group/group_tables.h"
#include "group/present_inputs.h"
#include "request/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;

struct PlannedTest {
  const GroupQuestion* question;
  GroupCell cell;
};

std::vector<PlannedTest> plannedTests(const GroupResult& group, const GroupModel& model) {
  std::vector<PlannedTest> planned;
  for (const GroupQuestion& question : model.questions) {
    if (!question.edges.empty()) continue;
    const std::size_t before = planned.size();
    for (GroupCell& cell : cellsOf(group, question)) planned.push_back({&question, std::move(cell)});
    if (planned.size() == before) {
      throw InputError(
          fmt::format("test '{}': fewer than two participants have what it asks for; 'tavmap bids ... group' "
                      "without a model lists "
                      "what there is",
                      question.name));
    }
  }
  return planned;
}

std::string nameOf(const PlannedTest& test) {
  std::string name = fmt::format("{}: {} of {}, {}", test.question->name, test.cell.map->label,
                                 test.cell.reference, test.cell.condition);
  if (!test.cell.sessions.empty()) name += ", " + test.cell.sessions;
  if (!test.cell.session.empty()) name += ", ses-" + test.cell.session;
  return name;
}

// What one question cannot have, all of its cells lack.
void addOnce(const std::string& text, std::vector<std::string>& texts) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

std::string countText(const char* by, const GroupCounts& counts, bool isTwoSided) {
  if (counts.positive + counts.negative == 0) return fmt::format("none {}", by);
  if (!isTwoSided) return fmt::format("{} {}", counts.positive, by);
  return fmt::format("{} above and {} below {}", counts.positive, counts.negative, by);
}

std::string peakText(const GroupPeak& peak) {
  return fmt::format("t = {:.2f} at {:.0f}, {:.0f}, {:.0f} mm", peak.t, peak.mm[0], peak.mm[1], peak.mm[2]);
}

void addEdgeTests(const GroupQuestion& question, const GroupInference& inference,
                  const Participants& participants, const GroupRunOptions& options,
                  GroupTestsResult& result) {
  try {
    std::vector<EdgeTestOutcome> tests =
        runEdgeTests(options.outDir, question, inference, participants, options.threads);
    std::move(tests.begin(), tests.end(), std::back_inserter(result.edgeTests));
  } catch (const InputError& error) {
    addOnce(error.what(), result.failures);
  }
}

void printEdgeTest(const EdgeTestOutcome& test, std::ostream& out) {
  out << fmt::format(
      "{}: {}\n  {} at {} edges of connectomes, {}; {} participants, {} shuffles\n  family-wise: {} edges by "
      "the maximum, "
      "{} components of edges by mass\n",
      test.test, test.question, test.measure, test.edges, test.condition, test.participants, test.shuffles,
      test.edgesPassing, test.componentsPassing);
  for (const std::string& text : test.leftOut) out << "  left out: " << text << "\n";
}

void printTest(const GroupTestRecord& record, std::ostream& out) {
  out << fmt::format("{}: {}\n  {}; {} participants, {} {}{}\n", record.test, record.question,
                     groupValueWords(record), record.rows.size(), record.shuffles, record.exchange,
                     record.isExhaustive ? " (all there are)" : "");
  const auto counted = [&](const char* by, const GroupCounts& counts) {
    return countText(by, counts, record.isTwoSided);
  };
  out << fmt::format("  family-wise p <= {}: voxels: {}", record.inference.level,
                     counted("by the maximum", record.byMaximum));
  if (record.inference.enhance) out << ", " << counted("by enhancement", record.byTfce);
  out << "; clusters: " << counted("by mass", record.byMass) << "\n";
  out << fmt::format("  false discovery rate {}: voxels: {}\n", record.inference.level,
                     counted("in all", record.byFdr));
  if (!record.peaks.empty()) {
    out << fmt::format("  {}: {}\n", record.peaks[0].by == "none" ? "largest, no finding" : "first peak",
                       peakText(record.peaks[0]));
  }
  for (const std::string& text : record.leftOut) out << "  left out: " << text << "\n";
  for (const std::string& warning : record.warnings) out << "  WARNING: " << warning << "\n";
}

}  // namespace

GroupTestsResult runGroupTests(const GroupResult& group, const GroupModel& model,
                               const Participants& participants, const GroupRunOptions& options,
                               const std::function<void(const std::string&)>& started) {
  const std::vector<PlannedTest> planned = plannedTests(group, model);
  GroupTestsResult result;
  for (const PlannedTest& test : planned) {
    started(nameOf(test));
    try {
      result.tests.push_back(runGroupTest(*test.question, test.cell, model.inference, participants, options));
    } catch (const InputError& error) {
      addOnce(error.what(), result.failures);
    }
  }
  for (const GroupQuestion& question : model.questions)
    if (!question.edges.empty()) addEdgeTests(question, model.inference, participants, options, result);
  if (result.tests.empty() && result.edgeTests.empty()) throw InputError(result.failures.front());
  return result;
}

Participants participantsOf(const fs::path& bidsDir, const fs::path& outDir) {
  const fs::path folder = bidsDir.empty() ? rawDataFolder(outDir) : bidsDir;
  const fs::path file = folder / "participants.tsv";
  return !folder.empty() && fs::exists(file) ? Participants::read(file) : Participants();
}

void printGroupTests(const GroupTestsResult& result, std::ostream& out) {
  for (const GroupTestOutcome& test : result.tests) printTest(test.record, out);
  for (const EdgeTestOutcome& test : result.edgeTests) printEdgeTest(test, out);
}

}  // namespace study
