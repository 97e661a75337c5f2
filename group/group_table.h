// The table of the group level: one row per record, condition, map and q.
#ifndef TAVMAP_GROUP_GROUP_TABLE_H
#define TAVMAP_GROUP_GROUP_TABLE_H

#include <filesystem>
#include <string>

#include "group/group.h"

namespace study {

// As in the records, so that a number of the table can be searched for there; "n/a" for NaN.
[[nodiscard]] std::string numberText(double value);

inline constexpr const char* kGroupTable = "group_tavmap.tsv";

// Writes group_tavmap.tsv and group_tavmap.json, which describes its columns, into outDir. A map
// without thresholds has one row without q. Equal records give equal files. Throws formats::FileError.
// Returns the number of rows.
std::size_t writeGroupTable(const GroupResult& group, const std::filesystem::path& outDir);

}  // namespace study

#endif
