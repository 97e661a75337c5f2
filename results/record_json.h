// Records as JSON text and back, and the parts of them that sidecars share: the one place that knows
// how a result is written.
#ifndef TAVMAP_RESULTS_RECORD_JSON_H
#define TAVMAP_RESULTS_RECORD_JSON_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "results/record.h"

namespace study {

// Keys in a fixed order, so that equal records are equal texts. Values that are not finite are null.
nlohmann::ordered_json recordJson(const Record& record);
[[nodiscard]] std::string recordText(const Record& record);  // as the file has it

// Unknown keys are overlooked. Throws formats::FileError for a text that is no whole record, saying
// what is missing or of another kind, and where. `path` is for the message alone.
[[nodiscard]] Record recordFromText(const std::string& text, const std::string& path);
// Throws formats::FileError for a file that cannot be read as well.
[[nodiscard]] Record readRecordFile(const std::string& path);

nlohmann::ordered_json runsJson(const std::vector<RunRecord>& runs);
nlohmann::ordered_json sourceJson(const ReferenceSource& source);
nlohmann::ordered_json inputsJson(const std::vector<InputRecord>& inputs);
nlohmann::ordered_json thresholdsJson(const std::vector<ThresholdResult>& thresholds);
nlohmann::ordered_json directionJson(const DirectionResult& direction);
nlohmann::ordered_json familyWiseJson(const FamilyWiseResult& result, bool withClusters);
nlohmann::ordered_json voxelsJson(const StatusCounts& counts);
void addModel(const ModelRecord& model, nlohmann::ordered_json& json);

}  // namespace study

#endif
