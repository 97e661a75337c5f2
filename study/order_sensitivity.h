// How far the maps of a request rest on the order of their models: the same maps at every order, and which
// voxels pass at all of them with the same sign.
#ifndef TAVMAP_STUDY_ORDER_SENSITIVITY_H
#define TAVMAP_STUDY_ORDER_SENSITIVITY_H

#include <cstddef>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "request/request.h"
#include "results/record.h"

namespace study {

struct OrderSensitivity {
  // Voxels of one map at one q and order; those of the reference are not counted.
  struct Counts {
    std::size_t computed = 0;  // with a value
    std::size_t passing = 0;
    std::size_t kept = 0;  // of those that pass at the base order, those that pass here with the same sign
  };
  struct Entry {
    std::string reference, condition;
    tav::MapType map = tav::REF2VOX;
    double q = 0;
    std::vector<Counts> orders;    // with models of order 1, 2, ... at [0], [1], ...
    std::size_t passingAtAll = 0;  // at all orders with the same sign
  };
  int base = 0;  // the order that the others are held against
  int maxOrder = 0;
  std::vector<Entry> entries;  // by reference, condition, map, q

  [[nodiscard]] std::size_t passingAtBase(const Entry& entry) const {
    return entry.orders[static_cast<std::size_t>(base) - 1].passing;
  }
};

// The request once for every order from 1 to its maxOrder (or to its fixed order, if that is higher), without
// family-wise error, results in orders/1, orders/2, ... of the work folder. All share the imported runs and
// one seed.
[[nodiscard]] std::vector<Request> requestsOfOrders(const Request& request);

// The results of one order: where they are, and the records of its references.
struct ResultsOfOrder {
  int order = 0;
  std::filesystem::path folder;
  std::vector<Record> records;
};

// Reads the maps of all orders, which have the same references, conditions, maps and q-values. Throws
// formats::FileError.
[[nodiscard]] OrderSensitivity compareOrders(const std::vector<ResultsOfOrder>& orders, int base);

// Tab-separated, a row per entry and order; shares of computed voxels, and of voxels that pass at the
// base order ("n/a" when none does).
[[nodiscard]] std::string sensitivityTable(const OrderSensitivity& sensitivity);
// For a terminal: a line per reference, condition and map, at the q that is nearest to .05.
void printSensitivity(const OrderSensitivity& sensitivity, std::ostream& out);
nlohmann::ordered_json sensitivityJson(const OrderSensitivity& sensitivity);

}  // namespace study

#endif
