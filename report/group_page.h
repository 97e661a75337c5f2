// The pages of tests over participants, from saved outputs alone.
#ifndef TAVMAP_REPORT_GROUP_PAGE_H
#define TAVMAP_REPORT_GROUP_PAGE_H

#include <filesystem>
#include <string>
#include <vector>

namespace report {

// Writes group/TEST_report.html (TEST_connectome.html of tests at every edge) and group/figures for every
// test below the output folder. Returns the pages' paths, none without a test. Throws formats::FileError.
std::vector<std::string> writeGroupReports(const std::filesystem::path& outDir);

}  // namespace report

#endif
