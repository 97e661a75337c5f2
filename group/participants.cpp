#include "group/participants.h"

#include <fmt/core.h>

#include <algorithm>

#include "bids/bids_names.h"
#include "formats/table.h"
#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {

Participants Participants::read(const std::filesystem::path& file) {
  const formats::Table table = formats::Table::read(file.string());
  const std::size_t ids = table.require("participant_id");
  Participants participants;
  participants.file_ = file.string();
  participants.columns_ = table.columns();
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const std::string label = withoutPrefix(table.cell(row, ids), "sub");
    std::vector<std::string> cells;
    for (std::size_t column = 0; column < table.columns().size(); ++column)
      cells.push_back(table.cell(row, column));
    if (!participants.rows_.emplace(label, std::move(cells)).second)
      table.fail(row, fmt::format("participant '{}' has a row already", label), "Keep one of the two");
  }
  return participants;
}

std::optional<std::string> Participants::value(const std::string& column,
                                               const std::string& participant) const {
  if (file_.empty()) {
    throw InputError(fmt::format(
        "there is no participants.tsv to take '{}' from; give the table with --participants", column));
  }
  const auto found = std::find(columns_.begin(), columns_.end(), column);
  if (found == columns_.end())
    throw InputError(fmt::format("{}: no column '{}'{}", file_, column, suggestion(column, columns_)));
  const auto row = rows_.find(participant);
  if (row == rows_.end()) return std::nullopt;
  const std::string& cell = row->second[static_cast<std::size_t>(found - columns_.begin())];
  return formats::isMissing(cell) ? std::nullopt : std::optional(cell);
}

}  // namespace study
