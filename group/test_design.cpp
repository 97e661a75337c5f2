#include "group/test_design.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <set>

#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

std::optional<double> numberIn(const std::string& text) {
  double value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<double> centred(std::vector<double> values) {
  double sum = 0;
  for (const double value : values) sum += value;
  for (double& value : values) value -= sum / static_cast<double>(values.size());
  return values;
}

class DesignMaker {
 public:
  DesignMaker(const GroupQuestion& question, const std::vector<std::string>& participants,
              const Participants& table)
      : question_(question),
        participants_(participants),
        table_(table),
        groups_(sidesOf(question.contrast)) {}

  GroupDesign make() {
    keepRows();
    if (groups_.empty())
      addColumn("mean", std::vector<double>(design_.rows.size(), 1.0));
    else
      addGroups();
    for (const std::string& covariate : question_.covariates)
      addColumn(covariate, covariateValues(covariate));
    weigh();
    joinColumns();
    addBlocks();
    return std::move(design_);
  }

 private:
  [[nodiscard]] std::vector<std::string> usedColumns() const {
    std::vector<std::string> used = question_.covariates;
    if (!groups_.empty()) used.push_back(question_.groupColumn);
    if (!question_.blocks.empty()) used.push_back(question_.blocks);
    return used;
  }

  void keepRows() {
    const std::vector<std::string> used = usedColumns();
    for (std::size_t i = 0; i < participants_.size(); ++i) {
      const auto missing = std::find_if(used.begin(), used.end(), [&](const std::string& column) {
        return !table_.value(column, participants_[i]);
      });
      if (missing == used.end())
        design_.rows.push_back(i);
      else
        design_.leftOut.push_back(
            fmt::format("sub-{} has no '{}' in {}", participants_[i], *missing, table_.file()));
    }
    if (design_.rows.size() < 2) fail("fewer than two participants are left");
  }

  [[nodiscard]] std::string valueOf(const std::string& column, std::size_t row) const {
    return *table_.value(column, participants_[row]);
  }

  void addColumn(const std::string& name, std::vector<double> values) {
    design_.model.columns.push_back(name);
    columns_.push_back(std::move(values));
  }

  // A column of means per group, all groups that there are.
  void addGroups() {
    std::map<std::string, std::vector<double>> members;
    for (const std::size_t row : design_.rows) members[valueOf(question_.groupColumn, row)];
    for (const std::size_t row : design_.rows) {
      design_.levels.push_back(valueOf(question_.groupColumn, row));
      for (auto& [level, indicator] : members)
        indicator.push_back(level == design_.levels.back() ? 1.0 : 0.0);
    }
    std::vector<std::string> levels;
    for (auto& [level, indicator] : members) levels.push_back(level), addColumn(level, std::move(indicator));
    for (const std::string& side : {groups_.first, groups_.second}) requireGroup(side, levels);
  }

  void requireGroup(const std::string& group, const std::vector<std::string>& levels) const {
    const auto size = std::count(design_.levels.begin(), design_.levels.end(), group);
    if (size == 0) {
      fail(fmt::format("no participant has '{}' in column '{}'{}", group, question_.groupColumn,
                       suggestion(group, levels)));
    }
    if (size < 2) fail(fmt::format("group '{}' has only one participant", group));
  }

  [[nodiscard]] std::vector<double> covariateValues(const std::string& column) const {
    std::vector<double> values;
    std::set<std::string> words;
    for (const std::size_t row : design_.rows) {
      const std::string cell = valueOf(column, row);
      if (const auto number = numberIn(cell))
        values.push_back(*number);
      else
        words.insert(cell);
    }
    if (!words.empty()) values = coded(column, words, !values.empty());
    if (std::all_of(values.begin(), values.end(), [&](double value) { return value == values[0]; }))
      fail(fmt::format("covariate '{}' is the same for every participant; leave it out", column));
    return centred(std::move(values));
  }

  [[nodiscard]] std::vector<double> coded(const std::string& column, const std::set<std::string>& words,
                                          bool hasNumbers) const {
    if (words.size() != 2 || hasNumbers) {
      fail(fmt::format("covariate '{}' holds {} in {}; a covariate is numbers, or one of two words", column,
                       hasNumbers ? "numbers and words" : fmt::format("{} different words", words.size()),
                       table_.file()));
    }
    std::vector<double> values;
    for (const std::size_t row : design_.rows)
      values.push_back(valueOf(column, row) == *words.begin() ? -0.5 : 0.5);
    return values;
  }

  void weigh() {
    std::vector<double>& weights = design_.model.contrast;
    weights.assign(columns_.size(), 0.0);
    const auto column = [&](const std::string& name) {
      return std::find(design_.model.columns.begin(), design_.model.columns.end(), name) -
             design_.model.columns.begin();
    };
    if (!groups_.empty()) {
      weights[static_cast<std::size_t>(column(groups_.first))] = 1;
      weights[static_cast<std::size_t>(column(groups_.second))] = -1;
      design_.words = fmt::format("{} differs from {}", groups_.first, groups_.second);
    } else if (question_.contrast == "mean") {
      weights[0] = 1;
      design_.words = "the mean differs from 0";
    } else {
      requireCovariate();
      weights[static_cast<std::size_t>(column(question_.contrast))] = 1;
      design_.words = fmt::format("it changes with {}", question_.contrast);
    }
    design_.exchange =
        question_.contrast == "mean" ? inference::Exchange::kSignFlips : inference::Exchange::kPermutations;
    addNuisances();
  }

  void addNuisances() {
    std::string given;
    for (const std::string& covariate : question_.covariates)
      if (covariate != question_.contrast) given += (given.empty() ? ", given " : " and ") + covariate;
    design_.words += given;
  }

  void requireCovariate() const {
    const auto& covariates = question_.covariates;
    if (std::find(covariates.begin(), covariates.end(), question_.contrast) != covariates.end()) return;
    fail(fmt::format(
        "the contrast '{}' is neither \"mean\", nor a difference of groups such as \"patient - control\", "
        "nor "
        "one of the covariates{}",
        question_.contrast, covariates.empty() ? "" : suggestion(question_.contrast, covariates)));
  }

  void joinColumns() {
    for (std::size_t row = 0; row < design_.rows.size(); ++row)
      for (const std::vector<double>& column : columns_) design_.model.design.push_back(column[row]);
  }

  void addBlocks() {
    if (question_.blocks.empty()) return;
    std::map<std::string, int> numbers;
    for (const std::size_t row : design_.rows) {
      const auto known = numbers.emplace(valueOf(question_.blocks, row), static_cast<int>(numbers.size()));
      design_.blocks.push_back(known.first->second);
    }
  }

  [[noreturn]] void fail(const std::string& why) const {
    throw InputError(fmt::format("test '{}': {}", question_.name, why));
  }

  const GroupQuestion& question_;
  const std::vector<std::string>& participants_;
  const Participants& table_;
  Sides groups_;
  GroupDesign design_;
  std::vector<std::vector<double>> columns_;
};

}  // namespace

GroupDesign groupDesign(const GroupQuestion& question, const std::vector<std::string>& participants,
                        const Participants& table) {
  return DesignMaker(question, participants, table).make();
}

}  // namespace study
