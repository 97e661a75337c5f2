// What can be explored, as requests: of a request file, of a data set, or of files that were named.
#ifndef TAVMAP_WORKBENCH_EXPLORE_REQUESTS_H
#define TAVMAP_WORKBENCH_EXPLORE_REQUESTS_H

#include <string>
#include <vector>

#include "request/request.h"
#include "workbench/sources.h"

namespace workbench {

struct ExploreChoice {
  std::string id, words;
  study::Request request;  // its references are those of the atlas, or none
};

// One, but of a data set one per participant, session and task. Empty without sources. output: where requests
// that are saved write their results. Throws study::InputError and formats::FileError.
[[nodiscard]] std::vector<ExploreChoice> exploreChoices(const ExploreSources& sources,
                                                        const std::filesystem::path& output);

}  // namespace workbench

#endif
