// The files of one condition's connectome.
#ifndef TAVMAP_CONNECTOME_RESULT_FILES_H
#define TAVMAP_CONNECTOME_RESULT_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include "connectome/condition_result.h"
#include "connectome/connectome_record.h"
#include "connectome/nodes.h"

namespace connectome {

// What files of a condition need beside its result.
struct FileContext {
  std::filesystem::path folder;  // that exists
  std::string prefix;
  std::string conditionLabel;  // for file names
  const std::vector<Node>& nodes;
  std::vector<std::size_t> order;  // of pictures
  const Record& record;            // all but conditions and files
};

// "Influence", "Instantaneous", "NetInfluence".
[[nodiscard]] const char* measureLabel(Measure measure);
// In words, for sidecars and pages: what it is and which way it goes.
[[nodiscard]] std::string measureWords(Measure measure, const std::vector<std::string>& given);
[[nodiscard]] const char* directionWords(EdgeDirection direction);

// Writes matrices, nodes and edges with their sidecars, and completes the condition's record with counts and
// names. Throws formats::FileError.
void writeCondition(const FileContext& context, const ConditionResult& result, ConditionRecord& condition);

// Reads a matrix of measures or of p: a table with the names of nodes above, as many rows as columns, n/a
// where there is nothing. names: filled with those above. Throws formats::FileError: not square, not a
// number.
[[nodiscard]] EdgeMatrix readMatrixFile(const std::string& path, std::vector<std::string>& names);

}  // namespace connectome

#endif
