// The summary of a study of many references: a line each.
#ifndef TAVMAP_STUDY_SUMMARY_TABLE_H
#define TAVMAP_STUDY_SUMMARY_TABLE_H

#include <ostream>

#include "study/study_run.h"

namespace study {

inline constexpr std::size_t kMostReferencesInFull = 10;

// Per reference and kind of map the number of voxels outside the reference that pass at the largest q, one
// per condition; how many voxels of DTAV keep their direction with reversed time, of those tested; and the
// largest peak of DTAV, or of the first map without it. What else there is to know stands in files, which the
// last line names. References that failed say why.
void printSummaryTable(const StudyOutcome& outcome, std::ostream& out);

// "peak -9.250 at (-2, 2, 4) mm in V1"; ", in no label" in the background of a label image; nothing more
// where places have no names.
[[nodiscard]] std::string peakText(const MapResult& map);

}  // namespace study

#endif
