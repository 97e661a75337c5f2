#include "simulation/block_design.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace simulation {
namespace {

constexpr int kBlockVolumes = 20;
constexpr int kRestVolumes = 10;

using NamedBlock = std::pair<formats::Interval, std::string>;

std::vector<NamedBlock> blocksByOnset(const formats::Protocol& design) {
  std::vector<NamedBlock> blocks;
  for (const formats::ProtocolCondition& condition : design.conditions)
    for (const formats::Interval& interval : condition.intervals)
      blocks.emplace_back(interval, condition.name);
  std::sort(blocks.begin(), blocks.end(),
            [](const NamedBlock& a, const NamedBlock& b) { return a.first.start < b.first.start; });
  return blocks;
}

}  // namespace

formats::Protocol blockDesign(int run, int volumes) {
  formats::Protocol design;
  design.unit = formats::TimeUnit::kVolumes;
  design.conditions = {{"faces", {}}, {"houses", {}}};
  if (run % 2 == 0) std::swap(design.conditions[0], design.conditions[1]);
  std::size_t next = 0;
  for (int first = kRestVolumes + 1; first + kBlockVolumes - 1 <= volumes;
       first += kBlockVolumes + kRestVolumes) {
    design.conditions[next].intervals.push_back({first, first + kBlockVolumes - 1});
    next = 1 - next;
  }
  return design;
}

std::string secondsText(double ms) {
  const long long whole = std::llround(ms);
  std::string decimals = std::to_string(whole % 1000);
  return fmt::format("{}.{}{}", whole / 1000, std::string(3 - decimals.size(), '0'), decimals);
}

std::string eventsTable(const formats::Protocol& design, double trMs) {
  std::string table = "onset\tduration\ttrial_type\n";
  for (const auto& [interval, name] : blocksByOnset(design))
    table += fmt::format("{}\t{}\t{}\n", secondsText((interval.start - 1) * trMs),
                         secondsText((interval.end - interval.start + 1) * trMs), name);
  return table;
}

}  // namespace simulation
