// What the maps of one report do not show: the limits that apply to these very data and settings.
#ifndef TAVMAP_REPORT_LIMITS_H
#define TAVMAP_REPORT_LIMITS_H

#include <string>
#include <vector>

#include "results/record.h"

namespace report {

struct Limit {
  std::string title, words;  // plain text
};

// In the order in which they stand on the page; each once.
[[nodiscard]] std::vector<Limit> limitsOf(const std::vector<const study::Record*>& records);

}  // namespace report

#endif
