#include "study/connectome_series.h"

#include <algorithm>
#include <cmath>

#include "study/engine_request.h"
#include "study/prepared_courses.h"

namespace study {
namespace {

// Sums of courses.
class MeanCourse {
 public:
  explicit MeanCourse(int volumes) : sums_(static_cast<std::size_t>(volumes), 0.0) {}
  void add(const std::vector<float>& course) {
    for (std::size_t t = 0; t < sums_.size(); ++t) sums_[t] += static_cast<double>(course[t]);
    ++count_;
  }
  // Zeros of nothing.
  void appendTo(std::vector<float>& values) const {
    for (const double sum : sums_) values.push_back(count_ == 0 ? 0.0F : static_cast<float>(sum / count_));
  }

 private:
  std::vector<double> sums_;
  int count_ = 0;
};

void appendRegion(const Region& region, const Grid& grid, PreparedCourses& run, std::vector<float>& values) {
  MeanCourse mean(run.volumes());
  for (std::size_t i = 0; i < region.coordinates.size(); i += 3) {
    const std::int32_t* const at = &region.coordinates[i];
    mean.add(run.read(grid.size.index(at[0], at[1], at[2])));
  }
  mean.appendTo(values);
}

void appendGlobalSignal(const Grid& grid, int threshold, PreparedCourses& run, std::vector<float>& values) {
  MeanCourse mean(run.volumes());
  const std::size_t voxels = grid.size.voxels();
  for (std::size_t i = 0; i < voxels; ++i) {
    const std::vector<float> course = run.read(i);
    const bool isFinite =
        std::all_of(course.begin(), course.end(), [](float value) { return std::isfinite(value); });
    if (isFinite && course.front() > static_cast<float>(threshold)) mean.add(course);
  }
  mean.appendTo(values);
}

connectome::SeriesRun seriesRun(const RunPlan& plan, const PlannedSet& set) {
  connectome::SeriesRun run;
  run.volumes = plan.volumes.volumes - plan.volumes.dropped;
  for (const VolumeRange& range : shifted(set.ranges, -plan.volumes.dropped))
    run.intervals.push_back({range.first - 1, length(range)});
  run.known = courseTreatments({plan}).begin()->second.known;
  run.treatment = [plan] { return courseTreatments({plan}).begin()->second.apply; };
  return run;
}

}  // namespace

connectome::NodeSeries connectomeSeries(const StudyPlan& plan, const PlannedCondition& condition,
                                        const ConnectomeNodes& nodes, const GivenNames& given) {
  connectome::NodeSeries series;
  series.nodes = nodes.nodes.size();
  series.given = given.regions.size() + (given.globalSignal ? 1 : 0);
  const Grid& grid = plan.space.grid;
  for (const PlannedSet& set : condition.sets) {
    const auto found = std::find_if(plan.runs.begin(), plan.runs.end(),
                                    [&](const RunPlan& run) { return run.request.name == set.source; });
    connectome::SeriesRun run = seriesRun(*found, set);
    PreparedCourses prepared(plan.workFolder / found->vtcName);
    for (const Region& region : nodes.regions) appendRegion(region, grid, prepared, run.nodes);
    if (given.globalSignal)
      appendGlobalSignal(grid, plan.request.settings.inclusionThreshold, prepared, run.given);
    for (const std::size_t region : given.regions) {
      const auto first = run.nodes.begin() + static_cast<std::ptrdiff_t>(region) * run.volumes;
      run.given.insert(run.given.end(), first, first + run.volumes);
    }
    series.runs.push_back(std::move(run));
  }
  return series;
}

}  // namespace study
