#include <fmt/core.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "study/order_evidence.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

constexpr OrderChoice kChoices[] = {OrderChoice::kBic, OrderChoice::kAic, OrderChoice::kHqc};

Json criteriaJson(const Criteria& criteria) {
  return {{"bic", criteria.bic}, {"aic", criteria.aic}, {"hqc", criteria.hqc}};
}

Criteria criteriaFrom(const Json& json) {
  return {json.at("bic").get<std::vector<double>>(), json.at("aic").get<std::vector<double>>(),
          json.at("hqc").get<std::vector<double>>()};
}

std::string fixed(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6f", value);
  return text;
}

void addRows(const std::string& begin, const char* kind, const Criteria& criteria, std::string& table) {
  for (std::size_t i = 0; i < criteria.bic.size(); ++i) {
    table += fmt::format("{}\t{}\t{}\t{}\t{}\t{}\n", begin, kind, i + 1, fixed(criteria.bic[i]),
                         fixed(criteria.aic[i]), fixed(criteria.hqc[i]));
  }
}

}  // namespace

Json orderJson(const OrderEvidence& evidence) {
  Json json = {
      {"MaxOrder", evidence.maxOrder}, {"Total", criteriaJson(evidence.total)}, {"Entries", Json::array()}};
  for (const OrderEvidence::Entry& entry : evidence.entries) {
    json["Entries"].push_back({{"Reference", entry.reference},
                               {"Condition", entry.condition},
                               {"EffectiveVolumes", entry.samples},
                               {"Voxels", entry.voxels},
                               {"Own", criteriaJson(entry.own)},
                               {"Joint", criteriaJson(entry.joint)}});
  }
  for (const OrderChoice choice : kChoices) json["Chosen"][orderChoiceName(choice)] = evidence.best(choice);
  return json;
}

OrderEvidence orderFromJson(const Json& json) {
  OrderEvidence evidence;
  evidence.maxOrder = json.at("MaxOrder");
  evidence.total = criteriaFrom(json.at("Total"));
  for (const Json& entry : json.at("Entries")) {
    evidence.entries.push_back({entry.at("Reference"), entry.at("Condition"), entry.at("EffectiveVolumes"),
                                entry.at("Voxels"), criteriaFrom(entry.at("Own")),
                                criteriaFrom(entry.at("Joint"))});
  }
  return evidence;
}

std::string orderTable(const OrderEvidence& evidence) {
  std::string table = "reference\tcondition\tmodel\torder\tbic\taic\thqc\n";
  for (const OrderEvidence::Entry& entry : evidence.entries) {
    addRows(fmt::format("{}\t{}", entry.reference, entry.condition), "own", entry.own, table);
    addRows(fmt::format("{}\t{}", entry.reference, entry.condition), "joint", entry.joint, table);
  }
  addRows("all\tall", "total", evidence.total, table);
  return table;
}

void printOrders(const OrderEvidence& evidence, std::ostream& out) {
  out << "order        BIC        AIC        HQC   (means over references and conditions; smaller is "
         "better)\n";
  for (std::size_t i = 0; i < evidence.total.bic.size(); ++i) {
    char line[96];
    const int order = static_cast<int>(i) + 1;
    const auto mark = [&](OrderChoice choice) { return evidence.best(choice) == order ? '*' : ' '; };
    std::snprintf(line, sizeof line, "%5d %10.5f%c%10.5f%c%10.5f%c\n", order, evidence.total.bic[i],
                  mark(OrderChoice::kBic), evidence.total.aic[i], mark(OrderChoice::kAic),
                  evidence.total.hqc[i], mark(OrderChoice::kHqc));
    out << line;
  }
  for (const OrderEvidence::Entry& entry : evidence.entries) {
    out << entry.reference << ", " << entry.condition << ": own course BIC " << bestOrder(entry.own.bic)
        << ", AIC " << bestOrder(entry.own.aic) << ", HQC " << bestOrder(entry.own.hqc);
    if (entry.voxels > 0) {
      out << "; with " << entry.voxels << " voxels BIC " << bestOrder(entry.joint.bic) << ", AIC "
          << bestOrder(entry.joint.aic) << ", HQC " << bestOrder(entry.joint.hqc);
    }
    out << " (" << entry.samples << " effective volumes)\n";
  }
}

}  // namespace study
