// One request on its way: its runs are imported, its order settled, its references computed, each
// piece by a worker.
#ifndef TAVMAP_STUDY_REQUEST_RUN_H
#define TAVMAP_STUDY_REQUEST_RUN_H

#include <cstddef>
#include <string>
#include <vector>

#include "study/study_folders.h"
#include "study/study_plan.h"
#include "study/study_run.h"
#include "study/worker_job.h"
#include "study/worker_pool.h"

namespace study {

class RequestRun {
 public:
  // All but the plan must outlive the pool's run.
  RequestRun(StudyPlan plan, const StudyOptions& options, WorkerPool& pool, StudyFolders& folders,
             StudyOutcome& outcome, ProgressBar& progress);

  // Adds what can be done at once to the pool; the rest follows when that is finished. Throws
  // formats::FileError.
  void start();

 private:
  [[nodiscard]] bool choosesOrder() const;
  [[nodiscard]] double workOfReferences() const;
  void addWork(const std::string& name, double weight, const WorkerJob& job,
               std::function<void(const WorkOutcome&)> finished, bool isTriedInParts = false);
  [[nodiscard]] bool isTriedInParts(const std::vector<std::size_t>& regions) const;
  void addImport(std::size_t run);
  void afterImports();
  void addOrder();
  void takeOrder(const WorkOutcome& work);
  void refuseOtherOrder(int order) const;
  void addReferences();
  static std::vector<std::vector<std::size_t>> sharedOut(const std::vector<std::size_t>& regions, int jobs);
  void addReferenceJob(const std::vector<std::size_t>& regions);
  void fail(const WorkOutcome& work, const std::string& what);
  void settle(ReferenceOutcome reference);
  bool keep(std::size_t region);
  void settleResults(const std::vector<std::size_t>& regions, const WorkOutcome& work);

  StudyPlan plan_;
  const StudyOptions& options_;
  WorkerPool& pool_;
  StudyFolders& folders_;
  StudyOutcome& outcome_;
  ProgressBar& progress_;
  std::size_t importsLeft_ = 0;
  bool failed_ = false;
};

}  // namespace study

#endif
