// The report of one request: a page that stands alone, and its pictures beside it, from saved outputs alone.
#ifndef TAVMAP_REPORT_REPORT_H
#define TAVMAP_REPORT_REPORT_H

#include <filesystem>
#include <string>

namespace report {

// Writes PREFIX_report.html and figures/*.svg into the folder. Returns the page's path. threads: how many
// draw. Throws formats::FileError.
std::string writeReport(const std::filesystem::path& folder, const std::string& prefix, int threads = 1);

// Whether pages have a script: the program was built with Node.
[[nodiscard]] bool isInteractive();

}  // namespace report

#endif
