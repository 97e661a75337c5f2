// The settings of a study as a table: everything that files, comparisons and keys know of a setting
// stands in its row. A new setting is a member of Settings and a row here.
#ifndef TAVMAP_REQUEST_SETTINGS_TABLE_H
#define TAVMAP_REQUEST_SETTINGS_TABLE_H

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "request/request.h"

namespace study {

// Where a setting stands in a list that grew in another order. New settings take the next place, so
// that what was made before keeps its bytes.
struct SettingPlace {
  constexpr SettingPlace(const char* nameThere, int placeThere) : name(nameThere), place(placeThere) {}
  const char* name;  // null: not part of it
  int place;         // from 1
};
inline constexpr SettingPlace kNotPart{nullptr, 0};

// A setting that a request may have with one of the methods alone.
struct ForOneMethod {
  Method method;
  const char* otherwise;     // end of the message to a request that has it with the other method
  bool keptWithout = false;  // the other method has a value of its own, which records and keys keep
};

struct Setting {
  using Member =
      std::variant<Method Settings::*, OrderChoice Settings::*, int Settings::*, double Settings::*,
                   std::set<tav::MapType> Settings::*, std::vector<double> Settings::*>;
  Member member;
  const char* key;      // in [settings]; null: read with the row before
  double least, most;   // of numbers, both allowed; q-values lie between them
  bool shown;           // takes effect in the example request, where the others are comments
  const char* words;    // behind it in the example; "{range}" stands for "1 to 20"; may be empty
  const char* name;     // in sentences: "model order"
  SettingPlace record;  // in sidecars and records; one value only
  // In the key of a result: whatever changes a result must be part of it, or a repeated command
  // would keep what another setting made.
  SettingPlace resultKey;
  std::optional<ForOneMethod> only{};  // unset: of both methods
};

// Whether requests with this method may have it, and whether their records and keys do.
[[nodiscard]] bool canBeAsked(const Setting& setting, Method method);
[[nodiscard]] bool isKept(const Setting& setting, Method method);

// In the order of the example request.
[[nodiscard]] std::span<const Setting> settingsTable();

using SettingValue = std::variant<std::int64_t, double, std::string>;
// One value; of a list all of them, map types as their numbers.
[[nodiscard]] std::vector<SettingValue> valuesOf(const Setting& setting, const Settings& settings);

// As a request file has it: "0.7", "\"plugin\"", "[0.01, 0.05]". The row must have a key.
[[nodiscard]] std::string settingText(const Setting& setting, const Settings& settings);
[[nodiscard]] std::string rangeText(const Setting& setting);  // "1 to 20"

// Rows that sidecars and records have, by their place there, the method first; isKept() says which of them
// are there with a method. Seeds and version stand behind the place kLastPlaceOfModel.
std::vector<const Setting*> recordedSettings();
inline constexpr int kLastPlaceOfModel = 7;

// What goes into the key of a result, names and values in their order. `order` must be the settled one.
[[nodiscard]] std::vector<std::pair<std::string, SettingValue>> keyParts(const Settings& settings);

}  // namespace study

#endif
