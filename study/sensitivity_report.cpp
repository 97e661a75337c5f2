// What order_sensitivity.h found, as a table, in words and as JSON.
#include <fmt/core.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "study/order_sensitivity.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

const char* nameOf(tav::MapType map) {
  return tav::MAPTYPE_NAMES[static_cast<std::size_t>(map)];
}

std::string share(std::size_t part, std::size_t whole) {
  if (whole == 0) return "n/a";
  return fmt::format("{:.4f}", static_cast<double>(part) / static_cast<double>(whole));
}

// The q-value that is nearest to .05.
double usualQ(const std::vector<OrderSensitivity::Entry>& entries) {
  double best = entries.empty() ? 0 : entries[0].q;
  for (const auto& entry : entries)
    if (std::abs(entry.q - 0.05) < std::abs(best - 0.05)) best = entry.q;
  return best;
}

std::string countsByOrder(const OrderSensitivity::Entry& entry) {
  std::string text;
  for (const auto& counts : entry.orders)
    text += fmt::format("{}{}", text.empty() ? "" : ", ", counts.passing);
  return text;
}

Json placeJson(const OrderSensitivity::Entry& entry) {
  return {{"Reference", entry.reference},
          {"Condition", entry.condition},
          {"Map", nameOf(entry.map)},
          {"Q", entry.q}};
}

// Calls use(order, counts).
template <typename Use>
void forEachOrder(const OrderSensitivity::Entry& entry, Use use) {
  for (std::size_t k = 0; k < entry.orders.size(); ++k) use(k + 1, entry.orders[k]);
}

}  // namespace

std::string sensitivityTable(const OrderSensitivity& sensitivity) {
  std::string table =
      "reference\tcondition\tmap\tq\torder\tbase_order\tvoxels_computed\tvoxels_passing\tshare_passing\t"
      "voxels_kept\tshare_kept\n";
  for (const auto& entry : sensitivity.entries) {
    forEachOrder(entry, [&](std::size_t order, const OrderSensitivity::Counts& counts) {
      table += fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n", entry.reference, entry.condition,
                           nameOf(entry.map), entry.q, order, sensitivity.base, counts.computed,
                           counts.passing, share(counts.passing, counts.computed), counts.kept,
                           share(counts.kept, sensitivity.passingAtBase(entry)));
    });
  }
  return table;
}

void printSensitivity(const OrderSensitivity& sensitivity, std::ostream& out) {
  const double q = usualQ(sensitivity.entries);
  out << fmt::format(
      "voxels that pass at q = {} with models of order 1 to {}, and what passes at all of them "
      "with the same sign as at order {}:\n",
      q, sensitivity.maxOrder, sensitivity.base);
  for (const auto& entry : sensitivity.entries) {
    if (entry.q != q) continue;
    out << fmt::format("{}, {}, {}: {}; {} of {} at all orders\n", entry.reference, entry.condition,
                       nameOf(entry.map), countsByOrder(entry), entry.passingAtAll,
                       sensitivity.passingAtBase(entry));
  }
}

Json sensitivityJson(const OrderSensitivity& sensitivity) {
  Json rows = Json::array(), atAll = Json::array();
  for (const auto& entry : sensitivity.entries) {
    forEachOrder(entry, [&](std::size_t order, const OrderSensitivity::Counts& counts) {
      Json& row = rows.emplace_back(placeJson(entry));
      row["Order"] = order;
      row["VoxelsComputed"] = counts.computed;
      row["VoxelsPassing"] = counts.passing;
      row["VoxelsKept"] = counts.kept;
    });
    Json& row = atAll.emplace_back(placeJson(entry));
    row["VoxelsPassing"] = sensitivity.passingAtBase(entry);
    row["VoxelsPassingAtAll"] = entry.passingAtAll;
  }
  Json json = {{"BaseOrder", sensitivity.base}, {"MaxOrder", sensitivity.maxOrder}};
  json["Rows"] = std::move(rows);
  json["AtAllOrders"] = std::move(atAll);
  return json;
}

}  // namespace study
