// Choosing among named files, runs or records, by the labels of a query.
#ifndef TAVMAP_BIDS_BIDS_FILTER_H
#define TAVMAP_BIDS_BIDS_FILTER_H

#include <fmt/core.h>

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bids/bids_names.h"
#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {

// Index entities compare as numbers, other labels byte for byte.
inline bool labelMatches(std::string_view key, std::string_view have, std::string_view wanted) {
  return key == "run" || key == "echo" ? sameLabel(have, wanted) : have == wanted;
}

// "MNI_res-2"; "native" for names without a space.
[[nodiscard]] std::string spaceOf(const BidsName& name);
// Whether a name lies in the space, given with its resolution or without.
[[nodiscard]] bool isInSpace(const BidsName& name, const std::string& space);

// Keeps the items (each has a BidsName `name`) whose entity is one of the labels, in their order; no
// labels keep all. kind and what are for the message: "no KIND of WHAT 'label'". Throws InputError
// for a label that matches nothing.
template <typename Item>
void filterBy(std::string_view key, const std::string& kind, const std::string& what,
              const std::vector<std::string>& labels, std::vector<Item>& items) {
  if (labels.empty()) return;
  std::set<std::string> known;
  for (const Item& item : items) {
    if (item.name.has(key)) known.insert(item.name.get(key));
  }
  std::vector<char> wanted(items.size(), 0);
  for (const std::string& given : labels) {
    const std::string label = withoutPrefix(given, key);
    bool any = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (!labelMatches(key, items[i].name.get(key), label)) continue;
      wanted[i] = 1;
      any = true;
    }
    if (!any) {
      throw InputError(fmt::format("no {} of {} '{}'{}", kind, what, label,
                                   suggestion(label, {known.begin(), known.end()})));
    }
  }
  std::vector<Item> kept;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (wanted[i] != 0) kept.push_back(std::move(items[i]));
  }
  items = std::move(kept);
}

}  // namespace study

#endif
