// The page of a connectome, from its saved files alone.
#ifndef TAVMAP_REPORT_CONNECTOME_PAGE_H
#define TAVMAP_REPORT_CONNECTOME_PAGE_H

#include <filesystem>
#include <string>
#include <vector>

namespace report {

// Prefixes in a folder that have a record of a connectome, sorted.
[[nodiscard]] std::vector<std::string> connectomesIn(const std::filesystem::path& folder);

// The page's name.
[[nodiscard]] std::string connectomePageOf(const std::string& prefix);

// Writes PREFIX_connectome.html, and figures/*_relmat.svg and .png, into the folder. Returns the page's path.
// Throws formats::FileError.
std::string writeConnectomePage(const std::filesystem::path& folder, const std::string& prefix);

}  // namespace report

#endif
