// What a request takes: time of one processor, memory of a worker, space on disk.
#ifndef TAVMAP_PLANNING_EXPENSES_H
#define TAVMAP_PLANNING_EXPENSES_H

#include <cstddef>
#include <filesystem>
#include <vector>

#include "planning/calibration.h"
#include "planning/survey.h"

namespace planning {

struct Expenses {
  double importSeconds = 0;     // of runs that are not imported yet; one worker a run
  double referenceSeconds = 0;  // of references that are missing, by one worker
  double reportSeconds = 0;     // of the page
  double workerMegabytes = 0;   // the most that one worker takes
  double reportMegabytes = 0;   // that drawing the page takes
  double workMegabytes = 0;     // that imports will add to the work folder
  double outMegabytes = 0;      // that results and the page will add to the output folder

  [[nodiscard]] double seconds() const { return importSeconds + referenceSeconds + reportSeconds; }
};

// `rates` may come from another plan of the same settings. Precondition: one.plan is set.
[[nodiscard]] Expenses expensesOf(const Surveyed& one, const Rates& rates);

// Of all requests, nothing for those that cannot be planned or miss nothing. Measures the rates on the one
// with most volumes, in a folder below `folder`; see measureRates().
[[nodiscard]] std::vector<Expenses> expensesOf(const std::vector<Surveyed>& requests,
                                               const std::filesystem::path& folder);
// The largest of each figure.
[[nodiscard]] Expenses largestOf(const std::vector<Expenses>& all);

// The time that passes when so many workers share the work of all; pages are drawn one after the other.
[[nodiscard]] double elapsedSeconds(const std::vector<Expenses>& all, int jobs);

// What to ask a scheduler for: three times the time that is expected and two minutes more, since its machines
// may be slower or busy, and half as much memory again; in round figures.
struct TaskNeeds {
  int minutes = 0, megabytes = 0;
};
[[nodiscard]] TaskNeeds needsOfTask(const Expenses& largest, int jobs, std::size_t together);
// The group level reads the results of so many requests; pages of as many are drawn.
[[nodiscard]] TaskNeeds needsOfGroup(std::size_t requests);
[[nodiscard]] TaskNeeds needsOfReports(const Expenses& largest, std::size_t requests);

}  // namespace planning

#endif
