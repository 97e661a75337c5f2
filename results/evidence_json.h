// Evidence as JSON text and back.
#ifndef TAVMAP_RESULTS_EVIDENCE_JSON_H
#define TAVMAP_RESULTS_EVIDENCE_JSON_H

#include <string>

#include "results/evidence.h"

namespace study {

// Keys in a fixed order: equal evidence is an equal text. Values that are not finite are null.
[[nodiscard]] std::string evidenceText(const Evidence& evidence);  // as the file has it

// Unknown keys are overlooked. Throws formats::FileError for a text that is no whole evidence, saying what is
// missing or of another kind, and where; lists that belong together must be equally long. `path` is for the
// message alone.
[[nodiscard]] Evidence evidenceFromText(const std::string& text, const std::string& path);
// Throws formats::FileError for a file that cannot be read as well.
[[nodiscard]] Evidence readEvidenceFile(const std::string& path);

}  // namespace study

#endif
