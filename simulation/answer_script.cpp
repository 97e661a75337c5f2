#include "simulation/answer_script.h"

#include <cstddef>

namespace simulation {
namespace {

constexpr const char* kOnlyFirstVoi = "# reference: the first VOI, then stop\ninteger 1\ninteger 0\n";

std::string opening(int method, const std::string& what, const std::string& condition) {
  return kOnlyFirstVoi + ("# intervals: " + what) + "\ninteger " + std::to_string(method) +
         "\n# a condition\ntext " + condition + '\n';
}

std::string ending(const std::string& prefix) {
  return "# no more VTCs, no more conditions, where the results go\ncancel\ntext\nsave " + prefix + '\n';
}

// Protocols list their conditions by first appearance, so the number may differ between runs.
std::size_t numberOf(const std::string& condition, const formats::Protocol& design) {
  std::size_t index = 0;
  while (design.conditions[index].name != condition) ++index;
  return index + 1;
}

}  // namespace

std::string wholeRunAnswers(const std::vector<SessionRun>& runs, const std::string& prefix) {
  std::string script = opening(1, "typed, one per VTC", "whole");
  for (const SessionRun& run : runs)
    script += "open " + run.vtc + "\ninteger 1\ninteger " + std::to_string(run.volumes) + '\n';
  return script + ending(prefix);
}

std::string protocolAnswers(const std::vector<SessionRun>& runs, const std::string& condition,
                            const std::string& prefix) {
  std::string script = opening(2, "of a protocol condition", condition);
  for (const SessionRun& run : runs)
    script += "open " + run.vtc + "\nopen " + run.protocol + "\ninteger " +
              std::to_string(numberOf(condition, run.design)) + '\n';
  return script + ending(prefix);
}

}  // namespace simulation
