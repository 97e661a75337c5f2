// The reports of an output folder: one per request, and an index over them.
#ifndef TAVMAP_REPORT_REPORTS_H
#define TAVMAP_REPORT_REPORTS_H

#include <filesystem>
#include <string>
#include <vector>

namespace report {

inline constexpr const char* kIndexFile = "index.html";

// Writes the report of every request that has results (or failures) in the folder or below it, and index.html
// into the folder when they lie below it or are several. Returns the paths of the pages. Throws
// study::InputError when there is no result, formats::FileError.
std::vector<std::string> rebuildReports(const std::filesystem::path& folder, int threads = 1);

// The index alone, over the results below the folder, with links to their reports.
std::string writeIndex(const std::filesystem::path& folder);

}  // namespace report

#endif
