// Which model order the data of a request speak for: information criteria of the references' own
// courses and of the joint models with a sample of voxels.
#ifndef TAVMAP_STUDY_ORDER_EVIDENCE_H
#define TAVMAP_STUDY_ORDER_EVIDENCE_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "request/request.h"
#include "study/order_fit.h"
#include "tav/tav_pars.h"

namespace study {

struct OrderEvidence {
  struct Entry {
    std::string reference, condition;
    int samples = 0;      // effective volumes, the same for every order
    int voxels = 0;       // joint models that could be fitted
    Criteria own, joint;  // means over what was fitted, per sample
  };
  int maxOrder = 0;
  std::vector<Entry> entries;
  Criteria total;  // mean over the entries of own plus joint

  // The order that the criterion chooses.
  [[nodiscard]] int best(OrderChoice choice) const;
};

// pars: the engine's record with arOrder = maxOrder; its VTCs, named relative to vtcFolder, must exist.
// sampleVoxels: joint fits
// per reference and condition, spread evenly over the included voxels (fewer when there are fewer).
// Intervals that are not longer than maxOrder + 2 volumes are left out, so that every order sees the
// same data. Throws InputError when no interval is long
// enough, RunError when the engine cannot read the data.
[[nodiscard]] OrderEvidence gatherOrderEvidence(const tav::TAV_Pars& pars,
                                                const std::filesystem::path& vtcFolder, int maxOrder,
                                                int sampleVoxels);

nlohmann::ordered_json orderJson(const OrderEvidence& evidence);
[[nodiscard]] OrderEvidence orderFromJson(const nlohmann::ordered_json& json);
// The curves as tab-separated rows, one per reference, condition, criterion and order.
[[nodiscard]] std::string orderTable(const OrderEvidence& evidence);
// For a terminal: the total curves, and which order each criterion chooses, overall and per entry.
void printOrders(const OrderEvidence& evidence, std::ostream& out);

}  // namespace study

#endif
