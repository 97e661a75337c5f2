// A paragraph for the methods of a paper, with the numbers of these very results.
#ifndef TAVMAP_REPORT_METHODS_TEXT_H
#define TAVMAP_REPORT_METHODS_TEXT_H

#include <string>
#include <vector>

#include "report/bibliography.h"
#include "results/record.h"

namespace report {

struct MethodsText {
  std::string words;        // plain text
  std::vector<Work> works;  // in the order in which they are cited
};

// records: of one request, at least one; what they share is taken from the first.
[[nodiscard]] MethodsText methodsText(const std::vector<const study::Record*>& records);

}  // namespace report

#endif
