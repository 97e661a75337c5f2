#include "prepare/course_filter.h"

#include <algorithm>

namespace study {
namespace {

std::vector<bool> withoutDropped(const std::vector<bool>& kept, int dropped) {
  return {kept.begin() + dropped, kept.end()};
}

}  // namespace

CourseFilter::CourseFilter(int volumes, int dropped, const std::vector<std::vector<double>>& confounds,
                           const std::vector<bool>& kept)
    : volumes_(volumes), dropped_(dropped), regression_(confounds, withoutDropped(kept, dropped)) {
  findGaps(kept);
}

void CourseFilter::findGaps(const std::vector<bool>& kept) {
  int lastKept = -1;
  for (int v = 0; v <= outputVolumes(); ++v) {
    const bool gapGoesOn =
        v < outputVolumes() && !kept[static_cast<std::size_t>(v) + static_cast<std::size_t>(dropped_)];
    if (gapGoesOn) continue;
    if (v - lastKept > 1) gaps_.push_back({lastKept, v});
    lastKept = v;
  }
}

void CourseFilter::bridge(const Gap& gap, float* course) const {
  const bool open = gap.before < 0, unended = gap.after >= outputVolumes();
  if (open && unended) return;  // nothing is kept
  const float left = course[open ? gap.after : gap.before];
  const float right = course[unended ? gap.before : gap.after];
  const float step = (right - left) / static_cast<float>(gap.after - gap.before);
  for (int v = gap.before + 1; v < gap.after; ++v)
    course[v] = left + step * static_cast<float>(v - gap.before);
}

void CourseFilter::apply(float* course) {
  std::copy(course + dropped_, course + volumes_, course);
  regression_.remove(course);
  for (const Gap& gap : gaps_) bridge(gap, course);
}

}  // namespace study
