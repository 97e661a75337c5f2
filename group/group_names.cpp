#include "group/group_names.h"

#include <fmt/core.h>

#include "bids/bids_names.h"

namespace study {

GroupNames::GroupNames(const std::string& test, const GroupCell& cell) {
  if (!cell.session.empty()) stem_ += fmt::format("ses-{}_", cell.session);
  if (!cell.task.empty()) stem_ += fmt::format("task-{}_", cell.task);
  const std::string sessions = cell.sessions.empty() ? "" : bidsLabel(cell.sessions);
  stem_ += fmt::format("seed-{}_contrast-{}{}{}_desc-{}", bidsLabel(cell.reference),
                       bidsLabel(cell.condition), sessions, cell.map->label, test);
}

std::string GroupNames::image(const std::string& what) const {
  return fmt::format("{}_stat-{}_statmap.nii.gz", stem_, what);
}

}  // namespace study
