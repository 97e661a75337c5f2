#include "request/confound_terms.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

#include "request/nearest_name.h"
#include "request/problem.h"
#include "request/split.h"

namespace study {
namespace {

using Names = std::vector<std::string>;

const Names kMotion = {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"};
const Names kTissue = {"white_matter", "csf"};

Names joined(const Names& a, const Names& b) {
  Names all = a;
  all.insert(all.end(), b.begin(), b.end());
  return all;
}

// Each name with its derivative, its square and its derivative's square.
Names expanded(const Names& names) {
  Names all;
  for (const char* ending : {"", "_derivative1", "_power2", "_derivative1_power2"}) {
    for (const std::string& name : names) all.push_back(name + ending);
  }
  return all;
}

const std::map<std::string, Names>& presets() {
  static const Names nine = joined(joined(kMotion, kTissue), {"global_signal"});
  static const std::map<std::string, Names> table = {{"6motion", kMotion}, {"24motion", expanded(kMotion)},
                                                     {"wmcsf", kTissue},   {"gs", {"global_signal"}},
                                                     {"9p", nine},         {"36p", expanded(nine)}};
  return table;
}

// Presets that take what the table has: their name and the beginning of the columns.
const std::map<std::string, std::string>& openPresets() {
  static const std::map<std::string, std::string> table = {{"cosine", "cosine"},
                                                           {"outliers", "motion_outlier"}};
  return table;
}

bool parseInt(std::string_view text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// "acompcor5" -> "a_comp_cor_", 5; false for any other text.
bool componentPreset(const std::string& term, std::string& stem, int& count) {
  for (const auto& [name, column] :
       {std::pair{"acompcor", "a_comp_cor_"}, std::pair{"tcompcor", "t_comp_cor_"}}) {
    const std::string_view begin(name);
    if (term.compare(0, begin.size(), begin) != 0) continue;
    stem = column;
    return parseInt(std::string_view(term).substr(begin.size()), count);
  }
  return false;
}

// Not more than one beyond what a table with so many columns may have: that one is missing.
Names components(const std::string& stem, int count, std::size_t columns) {
  Names names;
  for (int i = 0; i < count && names.size() <= columns; ++i)
    names.push_back(stem + (i < 10 ? "0" : "") + std::to_string(i));
  return names;
}

Names expandPiece(const std::string& piece, const Names& columns) {
  const auto preset = presets().find(piece);
  if (preset != presets().end()) return preset->second;
  const auto open = openPresets().find(piece);
  if (open != openPresets().end()) return columnsBeginningWith(columns, open->second);
  std::string stem;
  int count = 0;
  if (componentPreset(piece, stem, count)) return components(stem, count, columns.size());
  if (!piece.empty() && piece.back() == '*')
    return columnsBeginningWith(columns, piece.substr(0, piece.size() - 1));
  return {piece};
}

Names knownTerms(const Names& columns) {
  Names known = columns;
  for (const auto& [name, members] : presets()) known.push_back(name);
  for (const auto& [name, begin] : openPresets()) known.push_back(name);
  known.insert(known.end(), {"acompcor5", "tcompcor5"});
  return known;
}

void requireColumn(const std::string& name, const std::string& piece, const Names& columns,
                   const std::string& file) {
  if (std::find(columns.begin(), columns.end(), name) != columns.end()) return;
  const bool own = name == piece;
  throw InputError(fmt::format("{}: no column '{}'{}{}", file, name,
                               own ? "" : fmt::format(", asked for by '{}'", piece),
                               suggestion(name, own ? knownTerms(columns) : columns)));
}

}  // namespace

const std::vector<std::string>& motionColumns() {
  return kMotion;
}

std::vector<std::string> columnsBeginningWith(const Names& columns, std::string_view begin) {
  Names names;
  for (const std::string& name : columns) {
    if (name.starts_with(begin)) names.push_back(name);
  }
  return names;
}

std::string confoundTermProblem(const std::string& term) {
  for (const std::string& piece : split(term, '+')) {
    std::string stem;
    int count = 0;
    if (piece.empty()) return fmt::format("holds an empty name in '{}'", term);
    if (componentPreset(piece, stem, count) && (count < 1 || count > 99)) {
      return fmt::format("asks for {} components; 1 to 99 are possible", count);
    }
  }
  return "";
}

std::vector<std::string> expandConfoundTerms(const Names& terms, const Names& columns,
                                             const std::string& file) {
  Names chosen;
  for (const std::string& term : terms) {
    for (const std::string& piece : split(term, '+')) {
      for (const std::string& name : expandPiece(piece, columns)) {
        requireColumn(name, piece, columns, file);
        if (std::find(chosen.begin(), chosen.end(), name) == chosen.end()) chosen.push_back(name);
      }
    }
  }
  return chosen;
}

}  // namespace study
