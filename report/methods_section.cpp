#include "report/html.h"
#include "report/methods_text.h"
#include "report/sections.h"

namespace report {

std::string methodsSection(const StudyOutputs& outputs) {
  if (outputs.references.empty()) return "";
  std::vector<const study::Record*> records;
  for (const ReferenceOutputs& reference : outputs.references) records.push_back(&reference.record);
  const MethodsText methods = methodsText(records);
  return section("methods", "part", 2, "Methods, ready to paste",
                 element("p", {{"id", "methods-text"}, {"class", "methods"}}, text(methods.words)) +
                     copyButton("methods-text", "the paragraph") +
                     element("details", element("summary", "References as BibTeX") +
                                            element("pre", {{"id", "bibtex"}, {"tabindex", "0"}},
                                                    text(bibtex(methods.works))) +
                                            copyButton("bibtex", "the references")));
}

}  // namespace report
