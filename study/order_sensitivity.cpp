#include "study/order_sensitivity.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "formats/nifti.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// Per voxel of the image: the sign of a value that passes, 0 for any other.
using Signs = std::vector<std::int8_t>;

// One map of one order, with what has a value outside the reference.
struct ReadMap {
  std::vector<float> values;
  std::vector<bool> computed;
};

ReadMap readMap(const fs::path& folder, const ConditionRecord& condition, const MapResult& map) {
  ReadMap read{formats::readImage((folder / map.file).string()).values, {}};
  const auto codes = formats::readLabelImage((folder / condition.statusFile).string()).labels;
  read.computed.resize(read.values.size());
  for (std::size_t i = 0; i < codes.size(); ++i)
    read.computed[i] = codes[i] == static_cast<int>(StatusCode::kComputed);
  return read;
}

Signs signsOf(const ReadMap& map, const ThresholdResult& threshold) {
  Signs signs(map.values.size(), 0);
  if (!threshold.threshold) return signs;
  const auto limit = static_cast<float>(*threshold.threshold);
  for (std::size_t i = 0; i < signs.size(); ++i) {
    const float value = map.values[i];
    if (map.computed[i] && value != 0 && std::abs(value) >= limit)
      signs[i] = static_cast<std::int8_t>(value > 0 ? 1 : -1);
  }
  return signs;
}

std::size_t passing(const Signs& signs) {
  return static_cast<std::size_t>(std::count_if(signs.begin(), signs.end(), [](auto s) { return s != 0; }));
}

Signs shared(const Signs& a, const Signs& b) {
  Signs both(a.size(), 0);
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i] == b[i]) both[i] = a[i];
  return both;
}

// What belongs to one reference, condition and map, at all orders.
struct Place {
  std::size_t reference = 0, condition = 0, map = 0;
};

const ConditionRecord& conditionAt(const ResultsOfOrder& results, const Place& place) {
  return results.records[place.reference].conditions[place.condition];
}

void comparePlace(const std::vector<ResultsOfOrder>& orders, const Place& place, OrderSensitivity& found) {
  std::vector<ReadMap> maps;
  for (const ResultsOfOrder& results : orders) {
    const ConditionRecord& condition = conditionAt(results, place);
    maps.push_back(readMap(results.folder, condition, condition.maps[place.map]));
  }
  const std::string& reference = orders[0].records[place.reference].reference;
  const std::string& condition = conditionAt(orders[0], place).name;
  const auto base = static_cast<std::size_t>(found.base) - 1;
  const MapResult& first = conditionAt(orders[0], place).maps[place.map];
  for (std::size_t t = 0; t < first.thresholds.size(); ++t) {
    std::vector<Signs> signs;
    for (std::size_t k = 0; k < orders.size(); ++k)
      signs.push_back(signsOf(maps[k], conditionAt(orders[k], place).maps[place.map].thresholds[t]));
    auto& entry = found.entries.emplace_back(
        OrderSensitivity::Entry{reference, condition, first.type, first.thresholds[t].q, {}, 0});
    Signs all = signs[base];
    for (std::size_t k = 0; k < orders.size(); ++k) {
      const auto computed = std::count(maps[k].computed.begin(), maps[k].computed.end(), true);
      entry.orders.push_back(
          {static_cast<std::size_t>(computed), passing(signs[k]), passing(shared(signs[base], signs[k]))});
      all = shared(all, signs[k]);
    }
    entry.passingAtAll = passing(all);
  }
}

}  // namespace

std::vector<Request> requestsOfOrders(const Request& request) {
  std::vector<Request> requests;
  const fs::path work =
      request.output.workFolder.empty() ? request.output.folder / "work" : request.output.workFolder;
  const Settings& settings = request.settings;
  const int fixed = settings.orderChoice == OrderChoice::kFixed ? settings.order : 0;
  for (int order = 1; order <= std::max(settings.maxOrder, fixed); ++order) {
    Request one = request;
    one.title = fmt::format("{}, order {}", request.title, order);
    one.settings.orderChoice = OrderChoice::kFixed;
    one.settings.order = order;
    one.settings.fweDraws = 0;
    one.seed = request.seed.value_or(1);
    one.output.workFolder = work;
    one.output.folder = work / "orders" / std::to_string(order);
    requests.push_back(std::move(one));
  }
  return requests;
}

OrderSensitivity compareOrders(const std::vector<ResultsOfOrder>& orders, int base) {
  OrderSensitivity found;
  found.base = base;
  found.maxOrder = static_cast<int>(orders.size());
  const std::vector<Record>& records = orders.at(0).records;
  for (std::size_t r = 0; r < records.size(); ++r)
    for (std::size_t c = 0; c < records[r].conditions.size(); ++c)
      for (std::size_t m = 0; m < records[r].conditions[c].maps.size(); ++m)
        comparePlace(orders, {r, c, m}, found);
  return found;
}

}  // namespace study
