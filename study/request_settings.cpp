#include "study/request_settings.h"

#include <algorithm>
#include <charconv>

#include "study/nearest_name.h"
#include "study/toml_table.h"

namespace study {
namespace {

const std::vector<std::string> kKeys = {
    "method",          "order",   "max_order",    "order_sample", "null_draws",
    "map_types",       "q",       "cv_constant",  "surrogates",   "discarded_time_points",
    "inclusion_threshold", "instantaneous_lower", "rc_upper",     "map_scale"};
constexpr int kHighestOrder = 20;

void parseMethod(const TomlTable& table, Settings& settings) {
  const std::string name = table.text("method", methodName(settings.method));
  if (name != "calibrated" && name != "plugin") {
    table.fail("method", "is '" + name + "'" + suggestion(name, {"calibrated", "plugin"}));
  }
  settings.method = name == "plugin" ? Method::kPlugin : Method::kCalibrated;
}

void parseOrderKey(const TomlTable& table, Settings& settings) {
  for (const std::string& text : table.texts("order", true)) {
    if (!parseOrder(text, settings)) {
      table.fail("order", "is '" + text + "'; it must be 1 to 20, \"bic\", \"aic\" or \"hqc\"");
    }
  }
  settings.maxOrder = table.integer("max_order", settings.maxOrder, 1, kHighestOrder);
  settings.orderSample = table.integer("order_sample", settings.orderSample, 0, 1000000);
}

void parseMapTypes(const TomlTable& table, Settings& settings) {
  const std::vector<std::string> known(tav::MAPTYPE_NAMES.begin(), tav::MAPTYPE_NAMES.end());
  if (!table.has("map_types")) return;
  settings.mapTypes.clear();
  for (const std::string& name : table.texts("map_types")) {
    const auto found = std::find(known.begin(), known.end(), name);
    if (found == known.end()) table.fail("map_types", "names '" + name + "'" + suggestion(name, known));
    settings.mapTypes.insert(static_cast<tav::MapType>(found - known.begin()));
  }
  if (settings.mapTypes.empty()) table.fail("map_types", "is empty; name at least one map type");
}

void parseQValues(const TomlTable& table, Settings& settings) {
  if (!table.has("q")) return;
  settings.qValues = table.numbers("q");
  for (const double q : settings.qValues) {
    if (!(q > 0 && q < 1)) table.fail("q", "must hold values between 0 and 1, both excluded");
  }
  if (settings.qValues.empty()) table.fail("q", "is empty; give at least one q-value");
  std::sort(settings.qValues.begin(), settings.qValues.end());
  settings.qValues.erase(std::unique(settings.qValues.begin(), settings.qValues.end()), settings.qValues.end());
}

}  // namespace

bool parseOrder(const std::string& text, Settings& settings) {
  if (text == "bic" || text == "aic" || text == "hqc") {
    settings.orderChoice = text == "bic"   ? OrderChoice::kBic
                           : text == "aic" ? OrderChoice::kAic
                                           : OrderChoice::kHqc;
    return true;
  }
  int order = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), order);
  if (error != std::errc() || end != text.data() + text.size() || order < 1 || order > kHighestOrder) return false;
  settings.orderChoice = OrderChoice::kFixed;
  settings.order = order;
  return true;
}

Settings parseSettings(const toml::table& node, const std::string& file) {
  const TomlTable table(node, file, "[settings]", kKeys);
  Settings settings;
  parseMethod(table, settings);
  parseOrderKey(table, settings);
  parseMapTypes(table, settings);
  parseQValues(table, settings);
  if (settings.method == Method::kPlugin && table.has("null_draws")) {
    table.fail("null_draws", "has no meaning with method \"plugin\", which draws one surrogate per voxel; remove it");
  }
  settings.nullDraws = settings.method == Method::kPlugin ? 1 : table.integer("null_draws", 20, 1, 100);
  settings.cvConstant = table.integer("cv_constant", settings.cvConstant, 1, 2);
  settings.surrogates = table.integer("surrogates", settings.surrogates, 10, 10000);
  settings.discardedTimePoints = table.integer("discarded_time_points", settings.discardedTimePoints, 10, 1000);
  settings.inclusionThreshold = table.integer("inclusion_threshold", settings.inclusionThreshold, 0, 65535);
  settings.instantaneousLower = table.number("instantaneous_lower", settings.instantaneousLower, 0, 1e6);
  settings.rcUpper = table.number("rc_upper", settings.rcUpper, 0, 0.999999);
  settings.mapScale = table.number("map_scale", settings.mapScale, 0.01, 1000);
  return settings;
}

}  // namespace study
