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
double usualQ(const std::vector<OrderSensitivity::Stable>& entries) {
  double best = entries.empty() ? 0 : entries[0].q;
  for (const auto& entry : entries)
    if (std::abs(entry.q - 0.05) < std::abs(best - 0.05)) best = entry.q;
  return best;
}

std::size_t passingAtBase(const OrderSensitivity& sensitivity, const OrderSensitivity::Row& row) {
  for (const auto& entry : sensitivity.stable)
    if (entry.reference == row.reference && entry.condition == row.condition && entry.map == row.map &&
        entry.q == row.q)
      return entry.passingAtBase;
  return 0;
}

std::string countsByOrder(const OrderSensitivity& sensitivity, const OrderSensitivity::Stable& entry) {
  std::string counts;
  for (const auto& row : sensitivity.rows)
    if (row.reference == entry.reference && row.condition == entry.condition && row.map == entry.map &&
        row.q == entry.q)
      counts += fmt::format("{}{}", counts.empty() ? "" : ", ", row.passing);
  return counts;
}

}  // namespace

std::string sensitivityTable(const OrderSensitivity& sensitivity) {
  std::string table =
      "reference\tcondition\tmap\tq\torder\tbase_order\tvoxels_computed\tvoxels_passing\tshare_passing\t"
      "voxels_kept\tshare_kept\n";
  for (const auto& row : sensitivity.rows) {
    table += fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n", row.reference, row.condition,
                         nameOf(row.map), row.q, row.order, sensitivity.base, row.computed, row.passing,
                         share(row.passing, row.computed), row.kept,
                         share(row.kept, passingAtBase(sensitivity, row)));
  }
  return table;
}

void printSensitivity(const OrderSensitivity& sensitivity, std::ostream& out) {
  const double q = usualQ(sensitivity.stable);
  out << fmt::format(
      "voxels that pass at q = {} with models of order 1 to {}, and what passes at all of them "
      "with the same sign as at order {}:\n",
      q, sensitivity.maxOrder, sensitivity.base);
  for (const auto& entry : sensitivity.stable) {
    if (entry.q != q) continue;
    out << fmt::format("{}, {}, {}: {}; {} of {} at all orders\n", entry.reference, entry.condition,
                       nameOf(entry.map), countsByOrder(sensitivity, entry), entry.passingAtAll,
                       entry.passingAtBase);
  }
}

Json sensitivityJson(const OrderSensitivity& sensitivity) {
  Json json = {{"BaseOrder", sensitivity.base}, {"MaxOrder", sensitivity.maxOrder}};
  json["Rows"] = Json::array();
  for (const auto& row : sensitivity.rows) {
    json["Rows"].push_back({{"Reference", row.reference},
                            {"Condition", row.condition},
                            {"Map", nameOf(row.map)},
                            {"Q", row.q},
                            {"Order", row.order},
                            {"VoxelsComputed", row.computed},
                            {"VoxelsPassing", row.passing},
                            {"VoxelsKept", row.kept}});
  }
  json["AtAllOrders"] = Json::array();
  for (const auto& entry : sensitivity.stable) {
    json["AtAllOrders"].push_back({{"Reference", entry.reference},
                                   {"Condition", entry.condition},
                                   {"Map", nameOf(entry.map)},
                                   {"Q", entry.q},
                                   {"VoxelsPassing", entry.passingAtBase},
                                   {"VoxelsPassingAtAll", entry.passingAtAll}});
  }
  return json;
}

}  // namespace study
