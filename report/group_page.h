// The pages of tests over participants, from saved outputs alone.
#ifndef TAVMAP_REPORT_GROUP_PAGE_H
#define TAVMAP_REPORT_GROUP_PAGE_H

#include <filesystem>
#include <string>
#include <vector>

namespace report {

// Writes group/TEST_report.html and group/figures/*.svg for every test below the output folder. Returns the
// pages' paths, none without a test. Throws formats::FileError.
std::vector<std::string> writeGroupReports(const std::filesystem::path& outDir);

}  // namespace report

#endif
