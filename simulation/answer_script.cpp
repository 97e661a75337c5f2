#include "simulation/answer_script.h"

#include <fmt/core.h>

#include <cstddef>

namespace simulation {
namespace {

constexpr const char* kOnlyFirstVoi = "# reference: the first VOI, then stop\ninteger 1\ninteger 0\n";

std::string opening(int method, const std::string& what, const std::string& condition) {
  return fmt::format("{}{}\ninteger {}\n# a condition\ntext {}\n", kOnlyFirstVoi, "# intervals: " + what,
                     method, condition);
}

std::string ending(const std::string& prefix) {
  return fmt::format("# no more VTCs, no more conditions, where the results go\ncancel\ntext\nsave {}\n",
                     prefix);
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
    script += fmt::format("open {}\ninteger 1\ninteger {}\n", run.vtc, run.volumes);
  return script + ending(prefix);
}

std::string protocolAnswers(const std::vector<SessionRun>& runs, const std::string& condition,
                            const std::string& prefix) {
  std::string script = opening(2, "of a protocol condition", condition);
  for (const SessionRun& run : runs)
    script +=
        fmt::format("open {}\nopen {}\ninteger {}\n", run.vtc, run.protocol, numberOf(condition, run.design));
  return script + ending(prefix);
}

}  // namespace simulation
