// The tables of a test over participants, and what their columns mean.
#ifndef TAVMAP_GROUP_GROUP_TABLES_H
#define TAVMAP_GROUP_GROUP_TABLES_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "group/group_test_record.h"

namespace study {

// One row per cluster, numbered from 1 in the order of the record's peaks.
[[nodiscard]] std::string groupClusterTable(const GroupTestRecord& record);
[[nodiscard]] nlohmann::ordered_json groupClusterSidecar(const GroupTestRecord& record);
// One row per participant and peak that has values.
[[nodiscard]] std::string groupValueTable(const GroupTestRecord& record);
[[nodiscard]] nlohmann::ordered_json groupValueSidecar(const GroupTestRecord& record);
// Of an image of the test; what: as group_names.h lists them.
[[nodiscard]] nlohmann::ordered_json groupImageSidecar(const GroupTestRecord& record,
                                                       const std::string& what);

// "V1 to each voxel, condition faces": what values stand for, for titles and sidecars.
[[nodiscard]] std::string groupValueWords(const GroupTestRecord& record);

}  // namespace study

#endif
