// Addresses of report pages that need no cookie: an index is shown without the rights of the page, so that
// what it links to is asked for by nobody. Whoever knows such an address can read the pages (.html) at or
// below one folder, and nothing else; it holds a secret of this start.
#ifndef TAVMAP_WORKBENCH_REPORT_KEYS_H
#define TAVMAP_WORKBENCH_REPORT_KEYS_H

#include <filesystem>
#include <map>
#include <mutex>
#include <string>

namespace workbench {

// Any thread may call.
class ReportKeys {
 public:
  // The secret of a canonical folder, the same one at every call.
  [[nodiscard]] std::string keyOf(const std::filesystem::path& folder);
  // Throws Refusal 404 for a key that keyOf has not given.
  [[nodiscard]] std::filesystem::path folderOf(const std::string& key) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::filesystem::path, std::string> keys_;
};

}  // namespace workbench

#endif
