#include "report/quotes.h"

#include <fmt/core.h>

#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <utility>

#include "report/html.h"

namespace report {
namespace {

using formats::Json;

std::string shown(double value, const std::string& exact, Digits digits) {
  switch (digits) {
    case Digits::kFour:
      return fmt::format("{:.4g}", value);
    case Digits::kTenth:
      return fmt::format("{:.1f}", std::round(10 * value) / 10 + 0.0);  // not -0.0
    default:
      return exact;
  }
}

std::string quoted(const std::string& exact, double value, const std::string& from, Digits digits) {
  return element("data", {{"value", exact}, {"data-from", from}}, text(shown(value, exact, digits)));
}

}  // namespace

Quotes::Quotes(const Json& document, std::string file) : document_(&document), file_(std::move(file)) {}

Quotes Quotes::at(const std::string& way) const {
  Quotes place = *this;
  place.place_ += way;
  return place;
}

const Json* Quotes::find(const std::string& way) const {
  const Json::json_pointer pointer(place_ + way);
  return document_->contains(pointer) ? &document_->at(pointer) : nullptr;
}

bool Quotes::has(const std::string& way) const {
  return find(way) != nullptr;
}

std::string Quotes::number(const std::string& way, Digits digits) const {
  const Json* value = find(way);
  if (value == nullptr || !value->is_number()) return "n/a";
  return quoted(value->dump(), value->get<double>(), fmt::format("{}#{}{}", file_, place_, way), digits);
}

std::string quotedCell(std::size_t row, const std::string& column, const std::string& cell, Digits digits) {
  if (cell == "n/a") return cell;
  return quoted(cell, std::strtod(cell.c_str(), nullptr), fmt::format("#{}/{}", row + 1, column), digits);
}

}  // namespace report
