#include "prepare/event_blocks.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace study {
namespace {

struct Span {
  double start, end;  // seconds
};

std::vector<Span> chosenSpans(const std::vector<TimedEvent>& events, const std::vector<std::string>& types) {
  std::vector<Span> spans;
  for (const TimedEvent& event : events) {
    if (std::find(types.begin(), types.end(), event.trialType) == types.end()) continue;
    spans.push_back({event.onsetSeconds, event.onsetSeconds + std::max(0.0, event.durationSeconds)});
  }
  std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.start < b.start; });
  return spans;
}

std::vector<Span> joinedSpans(const std::vector<Span>& spans, double gapSeconds) {
  std::vector<Span> blocks;
  for (const Span& span : spans) {
    const bool joins = !blocks.empty() && span.start - blocks.back().end < gapSeconds;
    if (joins) {
      blocks.back().end = std::max(blocks.back().end, span.end);
    } else {
      blocks.push_back(span);
    }
  }
  return blocks;
}

VolumeRange volumesOf(const Span& block, double trSeconds) {
  const int first = static_cast<int>(std::floor(block.start / trSeconds + 0.5)) + 1;
  const int last = static_cast<int>(std::floor(block.end / trSeconds + 0.5));
  return {first, std::max(first, last)};
}

}  // namespace

std::vector<VolumeRange> eventBlocks(const std::vector<TimedEvent>& events, const BlockSettings& settings,
                                     double trSeconds, int volumes) {
  std::vector<VolumeRange> ranges;
  for (Span block : joinedSpans(chosenSpans(events, settings.trialTypes), settings.joinGapSeconds)) {
    block.start += settings.delaySeconds;
    block.end += settings.delaySeconds;
    VolumeRange range = volumesOf(block, trSeconds);
    // Two blocks may touch after rounding; a volume belongs to one of them.
    if (!ranges.empty()) range.first = std::max(range.first, ranges.back().last + 1);
    range.first = std::max(range.first, 1);
    range.last = std::min(range.last, volumes);
    if (range.first <= range.last) ranges.push_back(range);
  }
  return ranges;
}

std::vector<std::string> trialTypesOf(const std::vector<TimedEvent>& events) {
  std::set<std::string> types;
  for (const TimedEvent& event : events) types.insert(event.trialType);
  return {types.begin(), types.end()};
}

}  // namespace study
