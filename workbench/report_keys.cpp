#include "workbench/report_keys.h"

#include "workbench/exchange.h"
#include "workbench/secret.h"

namespace workbench {

std::string ReportKeys::keyOf(const std::filesystem::path& folder) {
  const std::lock_guard lock(mutex_);
  const auto [at, isNew] = keys_.try_emplace(folder);
  if (isNew) at->second = newSecret();
  return at->second;
}

std::filesystem::path ReportKeys::folderOf(const std::string& key) const {
  const std::lock_guard lock(mutex_);
  for (const auto& [folder, known] : keys_)
    if (isSameSecret(key, known)) return folder;
  throw Refusal(404, "There is no such report. Open it from the index in the workbench again.");
}

}  // namespace workbench
