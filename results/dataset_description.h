// What a folder of results says of itself.
#ifndef TAVMAP_RESULTS_DATASET_DESCRIPTION_H
#define TAVMAP_RESULTS_DATASET_DESCRIPTION_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "request/request.h"

namespace study {

// As BIDS wants it of a derivative: made by this version of the program, from the data sets of the request.
// Authors are those whom the raw data set names, if it does.
[[nodiscard]] nlohmann::ordered_json datasetDescription(const Request& request, const std::string& version);

}  // namespace study

#endif
