#include "report/html.h"
#include "report/limits.h"
#include "report/sections.h"

namespace report {

std::string limitsSection(const StudyOutputs& outputs) {
  std::vector<const study::Record*> records;
  for (const ReferenceOutputs& reference : outputs.references) records.push_back(&reference.record);
  std::string terms;
  for (const Limit& limit : limitsOf(records))
    terms += element("dt", text(limit.title)) + element("dd", text(limit.words));
  if (terms.empty()) return "";
  return section("limits", "part", 2, "What this does not show", element("dl", {{"class", "limits"}}, terms));
}

}  // namespace report
