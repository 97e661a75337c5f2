// Lists in a dialog's text, lines such as "2. driver", and answers that name one of their entries.
#ifndef TAVMAP_HOST_CHOICE_LIST_H
#define TAVMAP_HOST_CHOICE_LIST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/front_end.h"

namespace host {

struct Choice {
  int number;
  std::string name;
};

// The entries of a dialog's plain text whose numbers answer the question; empty: it has no list.
[[nodiscard]] std::vector<Choice> choicesOf(const IntegerQuestion& question, const std::string& text);

// The entries that an answer may mean: those with this name, else with it but for capitals, else those that
// have it as a part. One: that is meant.
[[nodiscard]] std::vector<Choice> meantBy(std::string_view answer, const std::vector<Choice>& choices);

// "3. LH_Vis_1, 4. LH_Vis_2": at most ten, and how many more.
[[nodiscard]] std::string enumerated(const std::vector<Choice>& choices);

}  // namespace host

#endif
