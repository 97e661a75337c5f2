// What stands behind the maps: charts of the evidence that was saved with them.
#ifndef TAVMAP_REPORT_EVIDENCE_SECTION_H
#define TAVMAP_REPORT_EVIDENCE_SECTION_H

#include <string>

#include "formats/json_file.h"
#include "report/study_outputs.h"

namespace report {

struct EvidenceSection {
  std::string html;      // empty when nothing was saved
  formats::Json charts;  // data of the charts, by id
};

// Throws formats::FileError for files that cannot be read.
[[nodiscard]] EvidenceSection evidenceSection(const StudyOutputs& outputs);

}  // namespace report

#endif
