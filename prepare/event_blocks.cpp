#include "prepare/event_blocks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace study {
namespace {

struct Span {
  double start, end;  // seconds
};

bool isChosen(const TimedEvent& event, const std::vector<std::string>& types) {
  return std::find(types.begin(), types.end(), event.trialType) != types.end();
}

Span spanOf(const TimedEvent& event) {
  return {event.onsetSeconds, event.onsetSeconds + std::max(0.0, event.durationSeconds)};
}

std::vector<Span> chosenSpans(const std::vector<TimedEvent>& events, const std::vector<std::string>& types) {
  std::vector<Span> spans;
  for (const TimedEvent& event : events) {
    if (isChosen(event, types)) spans.push_back(spanOf(event));
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

int overlappingEvents(const std::vector<TimedEvent>& events, const std::vector<std::string>& trialTypes) {
  int count = 0;
  double end = -std::numeric_limits<double>::infinity();
  for (const Span& span : chosenSpans(events, trialTypes)) {
    if (span.start < end) ++count;
    end = std::max(end, span.end);
  }
  return count;
}

std::vector<TimedEvent> eventsOutside(const std::vector<TimedEvent>& events, const BlockSettings& settings,
                                      double trSeconds, int volumes) {
  std::vector<TimedEvent> outside;
  for (const TimedEvent& event : events) {
    if (!isChosen(event, settings.trialTypes)) continue;
    const Span span = spanOf(event);
    const VolumeRange range =
        volumesOf({span.start + settings.delaySeconds, span.end + settings.delaySeconds}, trSeconds);
    if (range.last < 1 || range.first > volumes) outside.push_back(event);
  }
  std::stable_sort(outside.begin(), outside.end(),
                   [](const TimedEvent& a, const TimedEvent& b) { return a.onsetSeconds < b.onsetSeconds; });
  return outside;
}

std::vector<std::string> trialTypesOf(const std::vector<TimedEvent>& events) {
  std::set<std::string> types;
  for (const TimedEvent& event : events) types.insert(event.trialType);
  return {types.begin(), types.end()};
}

}  // namespace study
