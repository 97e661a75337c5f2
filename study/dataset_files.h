// What an output folder has for a data set as a whole, beside the results of each request. Commands that work
// on parts of one data set at the same time leave theirs in folders of their own
// (StudyOptions::datasetFolder), and one that comes after them all gathers them.
#ifndef TAVMAP_STUDY_DATASET_FILES_H
#define TAVMAP_STUDY_DATASET_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include "request/request.h"

namespace study {

// dataset_description.json, README and .bidsignore. The folder must exist. Throws formats::FileError.
void writeDatasetFiles(const Request& request, const std::string& version,
                       const std::filesystem::path& folder);

// Into `folder` what the folders below `parts` have: the same three, and in failures_tavmap.tsv the failures
// of all. `titles`: all requests that were asked for; what the table said of them before is replaced, rows of
// others stay. Nothing happens without parts. Throws formats::FileError.
void gatherDatasetFiles(const std::filesystem::path& folder, const std::filesystem::path& parts,
                        const std::vector<std::string>& titles);

}  // namespace study

#endif
