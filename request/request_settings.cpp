#include "request/request_settings.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>

#include "request/nearest_name.h"
#include "request/settings_table.h"
#include "request/toml_table.h"

namespace study {
namespace {

std::vector<std::string> knownKeys() {
  std::vector<std::string> keys;
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr) keys.emplace_back(row.key);
  }
  return keys;
}

// A criterion or a number in the row's range; false for anything else.
bool parseOrder(const Setting& row, const std::string& text, Settings& settings) {
  const auto choice = orderChoiceNamed(text);
  if (choice && *choice != OrderChoice::kFixed) {
    settings.orderChoice = *choice;
    return true;
  }
  int order = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), order);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  if (order < row.least || order > row.most) return false;
  settings.orderChoice = OrderChoice::kFixed;
  settings.order = order;
  return true;
}

// Reads the value of one row, by the type of its member.
struct RowReader {
  const TomlTable& table;
  const Setting& row;
  Settings& settings;

  void operator()(Method Settings::*member) const {
    const std::string name = table.text(row.key, methodName(settings.*member));
    const auto method = methodNamed(name);
    if (!method)
      table.fail(row.key, fmt::format("is '{}'{}", name, suggestion(name, {"calibrated", "plugin"})));
    settings.*member = *method;
  }
  void operator()(OrderChoice Settings::*) const {
    for (const std::string& text : table.texts(row.key, true)) {
      if (parseOrder(row, text, settings)) continue;
      table.fail(row.key,
                 fmt::format("is '{}'; it must be {}, \"bic\", \"aic\" or \"hqc\"", text, rangeText(row)));
    }
  }
  void operator()(int Settings::*member) const {
    settings.*member =
        table.integer(row.key, settings.*member, static_cast<int>(row.least), static_cast<int>(row.most));
  }
  void operator()(double Settings::*member) const {
    settings.*member = table.number(row.key, settings.*member, row.least, row.most);
  }
  void operator()(std::set<tav::MapType> Settings::*member) const {
    const std::vector<std::string> known(tav::MAPTYPE_NAMES.begin(), tav::MAPTYPE_NAMES.end());
    (settings.*member).clear();
    for (const std::string& name : table.texts(row.key)) {
      const auto found = std::find(known.begin(), known.end(), name);
      if (found == known.end())
        table.fail(row.key, fmt::format("names '{}'{}", name, suggestion(name, known)));
      (settings.*member).insert(static_cast<tav::MapType>(found - known.begin()));
    }
    if ((settings.*member).empty()) table.fail(row.key, "is empty; name at least one map type");
  }
  void operator()(std::vector<double> Settings::*member) const {
    std::vector<double>& values = settings.*member;
    values = table.numbers(row.key);
    for (const double q : values) {
      if (!(q > 0 && q < 1)) table.fail(row.key, "must hold values between 0 and 1, both excluded");
    }
    if (values.empty()) table.fail(row.key, "is empty; give at least one q-value");
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
  }
};

void refuseOfOtherMethod(const TomlTable& table, Method method) {
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr && table.has(row.key) && !canBeAsked(row, method))
      table.fail(row.key, row.only->otherwise);
  }
}

// Each draw is a surrogate of its own.
void settleFweDraws(const TomlTable& table, Settings& settings) {
  if (table.has("fwe_draws") && settings.fweDraws > settings.surrogates) {
    table.fail("fwe_draws", fmt::format("is {}, more than the {} surrogates that there are; ask for as many "
                                        "with 'surrogates', or for fewer draws",
                                        settings.fweDraws, settings.surrogates));
  }
  settings.fweDraws = std::min(settings.fweDraws, settings.surrogates);
}

void settleMethod(const TomlTable& table, Settings& settings) {
  refuseOfOtherMethod(table, settings.method);
  settleFweDraws(table, settings);
  if (settings.method != Method::kPlugin) return;
  settings.nullDraws = 1;
  settings.fweDraws = 0;
}

}  // namespace

ConnectomeSettings parseConnectome(const toml::table& node, const std::string& file) {
  constexpr int kFewest = 100, kMost = 10000;
  const TomlTable table(node, file, "[connectome]", {"surrogates", "condition_on"});
  ConnectomeSettings settings;
  settings.surrogates = table.integer("surrogates", settings.surrogates, kFewest, kMost);
  if (table.has("condition_on")) settings.conditionOn = table.texts("condition_on");
  for (const std::string& name : settings.conditionOn) {
    if (name.empty())
      table.fail("condition_on", "has an empty name; write \"global signal\" or names of references");
    if (name == kAllOthers && settings.conditionOn.size() > 1)
      table.fail("condition_on", "names \"all others\" and more; all others contain every reference");
  }
  return settings;
}

Settings parseSettings(const toml::table& node, const std::string& file) {
  const TomlTable table(node, file, "[settings]", knownKeys());
  Settings settings;
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr && table.has(row.key)) {
      std::visit(RowReader{table, row, settings}, row.member);
    }
  }
  settleMethod(table, settings);
  return settings;
}

}  // namespace study
