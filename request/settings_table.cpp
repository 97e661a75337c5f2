#include "request/settings_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace study {
namespace {

constexpr double kHighestOrder = 20;
using S = Settings;

constexpr ForOneMethod kDraws{
    Method::kCalibrated,
    R"(has no meaning with method "plugin", which draws one surrogate per voxel; remove it)", true};
constexpr ForOneMethod kWholeMaps{
    Method::kCalibrated,
    R"(has no meaning with method "plugin", which computes no whole maps of surrogates; remove it)"};
constexpr ForOneMethod kFdrConstant{
    Method::kCalibrated,
    R"(has no meaning with method "plugin"; write cv_constant instead: 1 for independent or positively )"
    R"(dependent voxels, 2 for any dependence)"};
constexpr ForOneMethod kCvConstant{
    Method::kPlugin,
    R"(is a choice of method "plugin"; write fdr_constant instead: 1 for independent or positively )"
    R"(dependent voxels, ln(voxels) + 0.58 for any dependence, or nothing for 1.5)"};

// clang-format off
constexpr auto kTable = std::to_array<Setting>({
    // member, key, least, most, shown, words
    //     name, place in records, place in result keys
    {&S::method, "method", 0, 0, true,
         R"("calibrated": thresholds calibrated on simulated null data; "plugin": the plug-in's numbers)",
         "method", {"Method", 1}, {"method", 1}},
    {&S::orderChoice, "order", 1, kHighestOrder, true,
         R"({range}, or a criterion that chooses it: "bic", "aic", "hqc")",
         "choice of the model order", {"ModelOrderChosenBy", 3}, {"choice", 3}},
    {&S::order, nullptr, 1, kHighestOrder, false, "",
         "model order", {"ModelOrder", 2}, {"order", 2}},
    // Of a search for the order, the order that it found alone counts.
    {&S::maxOrder, "max_order", 1, kHighestOrder, false, "the highest order that a criterion tries",
         "highest model order", kNotPart, kNotPart},
    {&S::orderSample, "order_sample", 0, 1000000, false, "voxels whose joint models a criterion looks at",
         "voxels looked at for the model order", kNotPart, kNotPart},
    {&S::nullDraws, "null_draws", 1, 100, false, R"(surrogates per voxel, {range} (method "calibrated"))",
         "null draws per voxel", {"NullDrawsPerVoxel", 5}, {"draws", 4}, kDraws},
    {&S::fweDraws, "fwe_draws", 0, 10000, false,
         R"(whole maps of surrogates for family-wise p, at most "surrogates"; 0: none (method "calibrated"))",
         "draws of the family-wise error", {"FamilyWiseDraws", 13}, {"fwe", 15}, kWholeMaps},
    // Records have these two by map.
    {&S::mapTypes, "map_types", 0, 0, false, "",
         "map types", kNotPart, {"map", 12}},
    {&S::qValues, "q", 0, 1, true, "false discovery rates",
         "q", kNotPart, {"q", 13}},
    {&S::fdrConstant, "fdr_constant", 1, 30, false,
         R"(divides every q; ln(voxels) + 0.58 for any dependence (method "plugin": cv_constant, 1 or 2))",
         "constant that divides q", {"FDRConstant", 12}, {"fdr", 14}, kFdrConstant},
    {&S::cvConstant, "cv_constant", 1, 2, false,
         "2: valid under any dependence of voxels; 1: independent or positively dependent",
         "constant of the false discovery rate", {"CVConstant", 7}, {"cv", 5}, kCvConstant},
    {&S::surrogates, "surrogates", 10, 10000, false, "simulated reference courses, {range}",
         "number of surrogates", {"NumberOfSurrogates", 4}, {"surrogates", 6}},
    {&S::discardedTimePoints, "discarded_time_points", 10, 1000, false, "warm-up of each simulation, {range}",
         "discarded simulated time points", {"DiscardedSimulatedTimePoints", 6}, {"discarded", 7}},
    {&S::inclusionThreshold, "inclusion_threshold", 0, 65535, false,
         "a voxel's first value must exceed it (masked images are shifted above it)",
         "inclusion threshold", {"FirstTimePointInclusionThreshold", 8}, {"inclusion", 8}},
    {&S::instantaneousLower, "instantaneous_lower", 0, 1e6, false,
         "DTAV_IT and DTAV_RC need at least this instantaneous influence",
         "lower threshold of the instantaneous influence", {"InstantaneousLowerThreshold", 9}, {"inst", 9}},
    {&S::rcUpper, "rc_upper", 0, 0.999999, false, "DTAV_RC values above it become 0",
         "upper threshold of DTAV_RC", {"RCUpperThreshold", 10}, {"rc", 10}},
    {&S::mapScale, "map_scale", 0.01, 1000, false, "factor of all maps but DTAV_RC",
         "factor of the maps", {"MapScaleFactor", 11}, {"scale", 11}},
    {&S::highPass, "high_pass", 0, 100000, false,
         "cut-off period in seconds, such as 128: slower cosines are regressed with the confounds; 0: none",
         "period of the high-pass filter", {"HighPassPeriod", 14}, {"highpass", 16}},
});
// clang-format on

// A member without a row shall not compile: counts the values that Settings can be made from.
struct AnyValue {
  template <typename T>
  operator T() const;
};
template <typename... Values>
constexpr std::size_t memberCount() {
  if constexpr (requires { S{Values{}..., AnyValue{}}; })
    return memberCount<Values..., AnyValue>();
  else
    return sizeof...(Values);
}
static_assert(memberCount<>() == kTable.size(), "every member of Settings needs its row, and none two");

std::string numberText(double value, std::chars_format format = std::chars_format::general) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value, format).ptr};
}

template <typename Items, typename ToText>
std::string listText(const Items& items, ToText toText) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + toText(item);
  return fmt::format("[{}]", text);
}

std::string quoted(const std::string& text) {
  return fmt::format("\"{}\"", text);
}

struct Values {
  const S& settings;
  std::vector<SettingValue> operator()(Method S::*m) const { return {methodName(settings.*m)}; }
  std::vector<SettingValue> operator()(OrderChoice S::*m) const { return {orderChoiceName(settings.*m)}; }
  std::vector<SettingValue> operator()(int S::*m) const { return {std::int64_t{settings.*m}}; }
  std::vector<SettingValue> operator()(double S::*m) const { return {settings.*m}; }
  std::vector<SettingValue> operator()(std::set<tav::MapType> S::*m) const {
    std::vector<SettingValue> numbers;
    for (const tav::MapType type : settings.*m) numbers.emplace_back(static_cast<std::int64_t>(type));
    return numbers;
  }
  std::vector<SettingValue> operator()(std::vector<double> S::*m) const {
    return {(settings.*m).begin(), (settings.*m).end()};
  }
};

struct Text {
  const S& settings;
  std::string operator()(Method S::*m) const { return quoted(methodName(settings.*m)); }
  std::string operator()(OrderChoice S::*m) const {
    return settings.*m == OrderChoice::kFixed ? std::to_string(settings.order)
                                              : quoted(orderChoiceName(settings.*m));
  }
  std::string operator()(int S::*m) const { return std::to_string(settings.*m); }
  std::string operator()(double S::*m) const { return numberText(settings.*m); }
  std::string operator()(std::set<tav::MapType> S::*m) const {
    return listText(settings.*m, [](tav::MapType type) {
      return quoted(tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)]);
    });
  }
  std::string operator()(std::vector<double> S::*m) const {
    return listText(settings.*m, [](double q) { return numberText(q); });
  }
};

std::vector<const Setting*> placed(SettingPlace Setting::*list) {
  std::vector<const Setting*> rows;
  for (const Setting& row : kTable) {
    if ((row.*list).name != nullptr) rows.push_back(&row);
  }
  std::sort(rows.begin(), rows.end(),
            [list](const Setting* a, const Setting* b) { return (a->*list).place < (b->*list).place; });
  return rows;
}

}  // namespace

std::span<const Setting> settingsTable() {
  return kTable;
}

bool canBeAsked(const Setting& setting, Method method) {
  return !setting.only || setting.only->method == method;
}

bool isKept(const Setting& setting, Method method) {
  return canBeAsked(setting, method) || setting.only->keptWithout;
}

std::vector<SettingValue> valuesOf(const Setting& setting, const Settings& settings) {
  return std::visit(Values{settings}, setting.member);
}

std::string settingText(const Setting& setting, const Settings& settings) {
  return std::visit(Text{settings}, setting.member);
}

std::string rangeText(const Setting& setting) {
  return fmt::format("{} to {}", numberText(setting.least, std::chars_format::fixed),
                     numberText(setting.most, std::chars_format::fixed));
}

std::vector<const Setting*> recordedSettings() {
  return placed(&Setting::record);
}

std::vector<std::pair<std::string, SettingValue>> keyParts(const Settings& settings) {
  std::vector<std::pair<std::string, SettingValue>> parts;
  for (const Setting* row : placed(&Setting::resultKey)) {
    if (!isKept(*row, settings.method)) continue;
    for (SettingValue& value : valuesOf(*row, settings)) {
      parts.emplace_back(row->resultKey.name, std::move(value));
    }
  }
  return parts;
}

}  // namespace study
