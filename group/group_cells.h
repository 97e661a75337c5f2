// Which maps of which participants a question is asked of.
#ifndef TAVMAP_GROUP_GROUP_CELLS_H
#define TAVMAP_GROUP_GROUP_CELLS_H

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "group/group.h"
#include "group/group_model.h"

namespace study {

// An image of one participant and the status map that says where it has values; paths below the output
// folder.
struct CellImage {
  std::string image, status;
  std::string directions;  // of the same condition; empty: there are none
  std::string key;         // of the record that they belong to
};

struct CellRow {
  std::string participant;  // without "sub-"
  CellImage plus, minus;    // minus is empty where no difference is asked for
};

// What of a participant's map a group is asked of.
enum class GroupValues {
  kEffect,    // the map as it is
  kZ,         // against each voxel's own null values: of measures, whose sign means nothing
  kReversed,  // minus that of reversed time
};

// A row of the kinds of maps that groups can be asked of.
struct GroupMap {
  const char* label;  // "dTAVrev": in models, file names and records
  tav::MapType type;
  GroupValues values;
};
[[nodiscard]] std::span<const GroupMap> groupMaps();
// By label; throws InputError that lists them.
[[nodiscard]] const GroupMap& groupMapNamed(const std::string& label, const std::string& test);

// One kind of map, of one reference, condition, task and session, over participants.
struct GroupCell {
  std::string task, session;  // empty: names have none; sessions that are compared: empty
  std::string reference;
  std::string
      condition;         // "faces", or "faces - houses"; of sessions that are compared: the condition of both
  std::string sessions;  // "ses-2 - ses-1" when they are compared
  const GroupMap* map = nullptr;
  std::vector<CellRow> rows;         // by participant
  std::vector<std::string> leftOut;  // in words: who has no such map, and why
  [[nodiscard]] bool isDifference() const { return !rows.empty() && !rows[0].minus.image.empty(); }
};

// Cells in the order of the records, those with fewer than two participants left out. Throws InputError for
// names that no record has, for a participant with several records of one cell, for kinds of maps that groups
// cannot be asked of, and for records that lack the image (of earlier versions, of method "plugin", or
// without further draws).
[[nodiscard]] std::vector<GroupCell> cellsOf(const GroupResult& group, const GroupQuestion& question);

}  // namespace study

#endif
