#include "request/settings_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "request/problem.h"
#include "request/request_settings.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Names = std::vector<std::string>;

// Another value of the row's member, inside its range.
struct OtherValue {
  Settings& settings;
  void operator()(Method Settings::*m) const { settings.*m = Method::kPlugin; }
  void operator()(OrderChoice Settings::*m) const { settings.*m = OrderChoice::kHqc; }
  void operator()(int Settings::*m) const { settings.*m = settings.*m == 1 ? 2 : settings.*m - 1; }
  void operator()(double Settings::*m) const { settings.*m = settings.*m == 0 ? 128 : settings.*m * 1.25; }
  void operator()(std::set<tav::MapType> Settings::*m) const { settings.*m = {tav::INST, tav::DTAV}; }
  void operator()(std::vector<double> Settings::*m) const { settings.*m = {0.02, 0.2}; }
};

// The defaults, with a method that has the setting.
Settings baseOf(const Setting& row) {
  Settings settings;
  if (row.only) settings.method = row.only->method;
  return settings;
}

// Lines that a request with this setting needs before it.
std::string linesBefore(const Setting& row) {
  const std::string key = row.key;
  if (key == "method") return "";
  const std::string method = std::string("method = \"") + methodName(baseOf(row).method) + "\"\n";
  return key == "fwe_draws" ? method + "surrogates = 10000\n" : method;
}

Settings changed(const Setting& row) {
  Settings settings = baseOf(row);
  std::visit(OtherValue{settings}, row.member);
  return settings;
}

TEST(SettingsTable, EveryRowHasAMemberOfItsOwn) {
  std::vector<Settings> seen;
  for (const Setting& row : settingsTable()) {
    const Settings other = changed(row);
    EXPECT_FALSE(other == Settings{}) << row.name;
    EXPECT_EQ(std::count(seen.begin(), seen.end(), other), 0) << row.name;
    seen.push_back(other);
  }
}

TEST(SettingsTable, NamesAndPlacesAreUnique) {
  std::set<std::string> names, keys, recordNames;
  std::set<int> recordPlaces, keyPlaces;
  for (const Setting& row : settingsTable()) {
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
    if (row.key != nullptr) {
      EXPECT_TRUE(keys.insert(row.key).second) << row.name;
    }
    if (row.record.name != nullptr) {
      EXPECT_TRUE(recordNames.insert(row.record.name).second) << row.name;
      EXPECT_TRUE(recordPlaces.insert(row.record.place).second) << row.name;
      EXPECT_EQ(valuesOf(row, Settings{}).size(), 1U) << row.name;
    }
    if (row.resultKey.name != nullptr) {
      EXPECT_TRUE(keyPlaces.insert(row.resultKey.place).second) << row.name;
    }
  }
}

Names recordNames(Method method) {
  Names names;
  for (const Setting* row : recordedSettings()) {
    if (isKept(*row, method)) names.emplace_back(row->record.name);
  }
  return names;
}

Names keyNames(const Settings& settings) {
  Names names;
  for (const auto& [name, value] : keyParts(settings)) {
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

// What stands in files and keys of results that exist; new names go behind these.
TEST(SettingsTable, NamesOfWhatWasMadeBeforeStay) {
  Settings plugin;
  plugin.method = Method::kPlugin;
  EXPECT_EQ(recordNames(plugin.method),
            (Names{"Method", "ModelOrder", "ModelOrderChosenBy", "NumberOfSurrogates", "NullDrawsPerVoxel",
                   "DiscardedSimulatedTimePoints", "CVConstant", "FirstTimePointInclusionThreshold",
                   "InstantaneousLowerThreshold", "RCUpperThreshold", "MapScaleFactor", "HighPassPeriod"}));
  EXPECT_EQ(keyNames(plugin), (Names{"method", "order", "choice", "draws", "cv", "surrogates", "discarded",
                                     "inclusion", "inst", "rc", "scale", "map", "q", "highpass"}));
}

TEST(SettingsTable, MethodCalibratedHasItsOwnConstantAndDraws) {
  EXPECT_EQ(recordNames(Method::kCalibrated),
            (Names{"Method", "ModelOrder", "ModelOrderChosenBy", "NumberOfSurrogates", "NullDrawsPerVoxel",
                   "DiscardedSimulatedTimePoints", "FirstTimePointInclusionThreshold",
                   "InstantaneousLowerThreshold", "RCUpperThreshold", "MapScaleFactor", "FDRConstant",
                   "FamilyWiseDraws", "HighPassPeriod"}));
  EXPECT_EQ(keyNames(Settings{}),
            (Names{"method", "order", "choice", "draws", "surrogates", "discarded", "inclusion", "inst", "rc",
                   "scale", "map", "q", "fdr", "fwe", "highpass"}));
}

// Only how an order is searched for may stay out: what was found counts.
TEST(SettingsTable, WhateverChangesAResultIsPartOfItsKey) {
  for (const Setting& row : settingsTable()) {
    const std::string key = row.key == nullptr ? "" : row.key;
    const bool inKey = keyParts(changed(row)) != keyParts(baseOf(row));
    EXPECT_EQ(inKey, key != "max_order" && key != "order_sample") << row.name;
  }
}

TEST(SettingsTable, ListsGoIntoTheKeyValueByValue) {
  Settings settings;
  settings.mapTypes = {tav::INST, tav::DTAV_RC};
  settings.qValues = {0.02, 0.2};
  std::multimap<std::string, SettingValue> parts;
  for (const auto& part : keyParts(settings)) parts.insert(part);
  EXPECT_EQ(parts.count("map"), 2U);
  EXPECT_EQ(parts.count("q"), 2U);
  EXPECT_EQ(parts.find("map")->second, SettingValue(std::int64_t{tav::INST}));
  EXPECT_EQ(parts.find("q")->second, SettingValue(0.02));
}

std::string rowText(const std::string& key, const Settings& settings) {
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr && row.key == key) return settingText(row, settings);
  }
  return "no such key";
}

TEST(SettingsTable, ValuesAreWrittenAsRequestsHaveThem) {
  Settings settings;
  EXPECT_EQ(rowText("order", settings), "1");
  settings.orderChoice = OrderChoice::kAic;
  settings.mapTypes = {tav::REF2VOX, tav::DTAV_IT};
  EXPECT_EQ(rowText("method", settings), "\"calibrated\"");
  EXPECT_EQ(rowText("order", settings), "\"aic\"");
  EXPECT_EQ(rowText("map_types", settings), "[\"REF2VOX\", \"DTAV_IT\"]");
  EXPECT_EQ(rowText("q", settings), "[0.01, 0.05, 0.1]");
  EXPECT_EQ(rowText("rc_upper", settings), "0.7");
  EXPECT_EQ(rowText("map_scale", settings), "100");
}

// Written and read again, every row keeps its value and changes no other.
TEST(SettingsTable, WhatIsWrittenIsReadTheSame) {
  for (const Setting& row : settingsTable()) {
    if (row.key == nullptr) continue;
    Settings before = changed(row);
    const std::string text = linesBefore(row) + row.key + " = " + settingText(row, before);
    if (std::string(row.key) == "fwe_draws") before.surrogates = 10000;
    before.fweDraws = std::min(before.fweDraws, before.surrogates);
    if (before.method == Method::kPlugin) before.nullDraws = 1, before.fweDraws = 0;  // go with the method
    EXPECT_EQ(parseSettings(toml::parse(text), "r.toml"), before) << row.name;
  }
}

TEST(SettingsTable, NumbersAreHeldToTheRangeOfTheirRow) {
  const auto read = [](const Setting& row, double value) {
    const bool whole = std::holds_alternative<int Settings::*>(row.member);
    const std::string number = whole ? std::to_string(static_cast<int>(value)) : std::to_string(value);
    (void)parseSettings(toml::parse(linesBefore(row) + row.key + " = " + number), "r.toml");
  };
  int tried = 0;
  for (const Setting& row : settingsTable()) {
    const bool number = std::holds_alternative<int Settings::*>(row.member) ||
                        std::holds_alternative<double Settings::*>(row.member);
    if (!number || row.key == nullptr) continue;
    EXPECT_NO_THROW(read(row, row.least)) << row.name;
    EXPECT_NO_THROW(read(row, row.most)) << row.name;
    EXPECT_THROW(read(row, row.least - 1), InputError) << row.name;
    EXPECT_THROW(read(row, row.most + 1), InputError) << row.name;
    ++tried;
  }
  EXPECT_GE(tried, 10);
}

}  // namespace
}  // namespace study
