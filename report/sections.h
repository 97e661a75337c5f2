// The sections of a report, as HTML.
#ifndef TAVMAP_REPORT_SECTIONS_H
#define TAVMAP_REPORT_SECTIONS_H

#include <cstddef>
#include <string>

#include "report/study_outputs.h"

namespace report {

// "PART-1" for the reference at index 1, "PART-1-0" for its first condition: ids of sections, and ways to
// them.
[[nodiscard]] std::string placeId(const char* part, std::size_t reference);
[[nodiscard]] std::string placeId(const char* part, std::size_t reference, std::size_t condition);

// "1-0": by what the script knows a condition.
[[nodiscard]] std::string viewId(std::size_t reference, std::size_t condition);

// For people with a script: copies the text of the element with this id. what: "the request".
[[nodiscard]] std::string copyButton(const std::string& id, const std::string& what);

// <section id="ID" class="CLASS"><hN>title</hN>content</section>; title is markup.
[[nodiscard]] std::string section(const std::string& id, const char* kind, int level,
                                  const std::string& title, const std::string& content);

// What was asked, whether the data could answer, and what came out, a table per condition.
[[nodiscard]] std::string summarySection(const StudyOutputs& outputs);
// References that failed, then every warning once, then notes. Empty when there is none.
[[nodiscard]] std::string warningsSection(const StudyOutputs& outputs);
// Clusters of the voxels that pass at the largest q.
[[nodiscard]] std::string peaksSection(const StudyOutputs& outputs);
// What these very maps do not show.
[[nodiscard]] std::string limitsSection(const StudyOutputs& outputs);
// A paragraph to paste, and its references as BibTeX.
[[nodiscard]] std::string methodsSection(const StudyOutputs& outputs);
// Versions, seeds, inputs with checksums, the request.
[[nodiscard]] std::string provenanceSection(const StudyOutputs& outputs);

}  // namespace report

#endif
