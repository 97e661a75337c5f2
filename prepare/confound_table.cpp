#include "prepare/confound_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <string_view>
#include <utility>

#include "request/confound_terms.h"
#include "request/problem.h"
#include "request/split.h"

namespace study {
namespace {

using Names = std::vector<std::string>;
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr double kHeadRadiusMm = 50;

double parseValue(const std::string& text, const std::filesystem::path& file, std::size_t line) {
  if (text == "n/a" || text == "NaN" || text == "nan" || text.empty()) return kMissing;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc() && end == text.data() + text.size()) return value;
  throw InputError(
      fmt::format("{}:{}: '{}' is not a number; confounds hold numbers or n/a", file.string(), line, text));
}

std::string unquoted(std::string text) {
  if (!text.empty() && text.back() == '\r') text.pop_back();
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') return text.substr(1, text.size() - 2);
  return text;
}

void addRow(const std::string& row, std::size_t line, ConfoundTable& table) {
  const Names cells = split(row, '\t');
  if (cells.size() != table.names.size()) {
    throw InputError(fmt::format("{}:{}: {} columns where the header names {}; confounds are tab-separated",
                                 table.file.string(), line, cells.size(), table.names.size()));
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    table.columns[i].push_back(parseValue(unquoted(cells[i]), table.file, line));
  }
}

// Leading missing values become the mean of the others.
std::vector<double> imputed(std::vector<double> column, const std::string& name, const ConfoundTable& table,
                            std::size_t firstVolume) {
  const auto isNumber = [](double value) { return std::isfinite(value); };
  const auto first = std::find_if(column.begin(), column.end(), isNumber);
  const auto hole = std::find_if_not(first, column.end(), isNumber);
  if (first == column.end() || hole != column.end()) {
    const std::size_t volume = static_cast<std::size_t>(hole - column.begin());
    throw InputError(
        fmt::format("{}: column '{}' has no number at volume {}; choose other columns or repair the table",
                    table.file.string(), name, std::min(volume, column.size() - 1) + firstVolume + 1));
  }
  double sum = 0;
  std::for_each(first, column.end(), [&](double value) { sum += value; });
  std::fill(column.begin(), first, sum / static_cast<double>(column.end() - first));
  return column;
}

std::vector<double> displacementFromMotion(const std::array<const std::vector<double>*, 6>& motion) {
  std::vector<double> fd(motion[0]->size(), kMissing);
  for (std::size_t v = 1; v < fd.size(); ++v) {
    double sum = 0;
    for (std::size_t i = 0; i < 6; ++i) {
      const double step = std::abs((*motion[i])[v] - (*motion[i])[v - 1]);
      sum += i < 3 ? step : step * kHeadRadiusMm;
    }
    fd[v] = sum;
  }
  return fd;
}

}  // namespace

const std::vector<double>* ConfoundTable::find(const std::string& name) const {
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? nullptr : &columns[static_cast<std::size_t>(found - names.begin())];
}

ConfoundTable parseConfounds(std::istream& text, const std::filesystem::path& file) {
  ConfoundTable table;
  table.file = file;
  std::string row;
  std::getline(text, row);
  for (const std::string& cell : split(row, '\t')) table.names.push_back(unquoted(cell));
  if (row.empty())
    throw InputError(file.string() + ": empty; a confounds table begins with a line of column names");
  table.columns.resize(table.names.size());
  for (std::size_t line = 2; std::getline(text, row); ++line) {
    if (!row.empty() && row != "\r") addRow(row, line, table);
  }
  if (table.volumes() == 0) throw InputError(file.string() + ": no rows below the column names");
  return table;
}

ConfoundTable readConfounds(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw InputError("cannot open the confounds table " + file.string());
  return parseConfounds(stream, file);
}

std::vector<std::vector<double>> confoundColumns(const ConfoundTable& table, const Names& names,
                                                 std::size_t firstVolume) {
  std::vector<std::vector<double>> columns;
  for (const std::string& name : names) {
    const std::vector<double>& column = *table.find(name);
    const auto begin = column.begin() + static_cast<std::ptrdiff_t>(std::min(firstVolume, column.size()));
    columns.push_back(imputed({begin, column.end()}, name, table, firstVolume));
  }
  return columns;
}

Displacement findDisplacement(const ConfoundTable& table) {
  const std::vector<double>* own = table.find("framewise_displacement");
  if (own != nullptr) return {*own, DisplacementSource::kColumn};
  std::array<const std::vector<double>*, 6> motion{};
  for (std::size_t i = 0; i < 6; ++i) motion[i] = table.find(motionColumns()[i]);
  if (std::find(motion.begin(), motion.end(), nullptr) != motion.end()) return {};
  return {displacementFromMotion(motion), DisplacementSource::kParameters};
}

std::vector<double> framewiseDisplacement(const ConfoundTable& table) {
  Displacement found = findDisplacement(table);
  if (!found.mm.empty()) return std::move(found.mm);
  throw InputError(table.file.string() +
                   ": neither 'framewise_displacement' nor the six motion columns; "
                   "censoring needs one of them");
}

int nonSteadyStateVolumes(const ConfoundTable& table) {
  std::size_t count = 0;
  for (const std::string& name : columnsBeginningWith(table.names, "non_steady_state_outlier")) {
    const std::vector<double>& column = *table.find(name);
    for (std::size_t v = 0; v < column.size(); ++v) {
      if (column[v] != 0) count = std::max(count, v + 1);
    }
  }
  return static_cast<int>(count);
}

}  // namespace study
