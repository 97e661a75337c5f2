// The page over all requests of an output folder.
#ifndef TAVMAP_REPORT_INDEX_PAGE_H
#define TAVMAP_REPORT_INDEX_PAGE_H

#include <filesystem>
#include <string>
#include <vector>

#include "report/study_outputs.h"

namespace report {

// What failed first, with the reason; then a row per reference and condition: a small picture of the main
// map, figures of quality that sort, a link to the report. Before them links to tests over participants, and
// to those pages of connectomes that are there. folder: where the page will lie. connectomes: paths of their
// pages. Throws formats::FileError.
[[nodiscard]] std::string indexPage(const std::filesystem::path& folder,
                                    const std::vector<StudyOutputs>& requests,
                                    const std::vector<std::filesystem::path>& connectomes);

}  // namespace report

#endif
