// A study ready for references that nobody knows yet: its runs imported, its time series in memory.
#ifndef TAVMAP_LIVE_LOADED_STUDY_H
#define TAVMAP_LIVE_LOADED_STUDY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "live/reference.h"
#include "study/prepared_courses.h"
#include "study/study_plan.h"
#include "tav/loaded_vtc.h"
#include "tav/run_options.h"

namespace live {

struct LoadOptions {
  std::string program;  // the path of `tavmap`, which imports runs
  std::string version;
  int jobs = 1;
  std::size_t mostBytes = 0;  // of time series in memory
  const std::atomic<bool>* cancel = nullptr;
  // Called as loading goes on: 0 to 1, and what is done, in words.
  std::function<void(double, const std::string&)> progress = {};
};

// Never changes, so that any number of threads share it.
struct LoadedStudy {
  // Of the request, in which references play no part: `regions` is empty. Its order is settled.
  study::StudyPlan plan;
  std::map<std::string, std::shared_ptr<const tav::LoadedVtc>> vtcs;  // by the names that the plan gives them
  std::map<std::string, tav::CourseTreatment> treatments;             // likewise
  std::map<std::string, double> shifts;  // likewise: what the import added to the values
  std::optional<Atlas> atlas;
  // Cells x + nx (y + ny z) of the voxels that any run has, ascending.
  std::vector<std::uint32_t> cells;
  std::size_t bytes = 0;  // of all time series

  // The voxels of a planned run.
  [[nodiscard]] study::PreparedCourses coursesOf(const study::RunPlan& run) const {
    return study::PreparedCourses(vtcs.at(run.vtcName));
  }
  [[nodiscard]] const Atlas* atlasOrNone() const { return atlas ? &*atlas : nullptr; }
};

// Imports what is not imported yet, settles the order, and reads everything into memory. A request without
// references is given one for the while. Throws study::InputError, also when the time series need more than
// options.mostBytes (before any is read), study::RunError, formats::FileError, and tav::Cancelled.
[[nodiscard]] std::shared_ptr<const LoadedStudy> loadStudy(const study::Request& request,
                                                           const LoadOptions& options);

}  // namespace live

#endif
