// Fields of plain structs, written to and read from JSON by one description each:
//
//   template <typename Fields> void describe(Fields& fields, Of<Fields, Thing>& thing) {
//     fields("Name", thing.name);
//   }
//
// A number that is not finite is null in JSON and NaN in the struct. Other keys are overlooked; a
// missing one or a value of another kind is a FileError that says where.
#ifndef TAVMAP_RESULTS_JSON_FIELDS_H
#define TAVMAP_RESULTS_JSON_FIELDS_H

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "formats/json_file.h"
#include "request/volume_ranges.h"

namespace study {

using formats::Json;
using formats::JsonPlace;

// What a description takes: to be read into, or to be written from.
template <typename Fields, typename T>
using Of = std::conditional_t<Fields::kReads, T, const T>;

class FieldWriter {
 public:
  static constexpr bool kReads = false;
  explicit FieldWriter(Json& json) : json_(json) {}

  template <typename T>
  void operator()(const char* key, const T& value) {
    json_[key] = written(value);
  }
  // A key that is there only when it has something to say.
  template <typename T>
  void unlessEmpty(const char* key, const T& value) {
    if (!value.empty()) (*this)(key, value);
  }
  // What follows from other fields and is written for people.
  void told(const char* key, const Json& value) { json_[key] = value; }
  // One of a list of names, of a place in it that fits in T.
  template <typename T, typename Names>
  void choice(const char* key, const T& value, const Names& names, const char*) {
    json_[key] = names[static_cast<std::size_t>(value)];
  }
  // An object inside: describeInside(Fields&).
  template <typename Describe>
  void inside(const char* key, Describe describeInside) {
    Json inner = Json::object();
    FieldWriter fields(inner);
    describeInside(fields);
    json_[key] = std::move(inner);
  }

  static Json written(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }
  static Json written(const std::optional<double>& value) { return value ? written(*value) : Json(nullptr); }
  static Json written(const std::map<std::string, std::uintmax_t>& sizes) {
    Json object = Json::object();
    for (const auto& [name, size] : sizes) object[name] = size;
    return object;
  }
  template <std::integral T>
  static Json written(const T& value) {
    return value;
  }
  static Json written(const std::string& value) { return value; }
  static Json written(const VolumeRange& range) { return Json::array({range.first, range.last}); }
  template <typename T>
  static Json written(const std::vector<T>& values) {
    return list(values);
  }
  template <typename T, std::size_t n>
  static Json written(const std::array<T, n>& values) {
    return list(values);
  }
  template <typename T>
  static Json written(const T& thing) {
    Json object = Json::object();
    FieldWriter fields(object);
    describe(fields, thing);
    return object;
  }

 private:
  template <typename Values>
  static Json list(const Values& values) {
    Json array = Json::array();
    for (const auto& value : values) array.push_back(written(value));
    return array;
  }

  Json& json_;
};

class FieldReader {
 public:
  static constexpr bool kReads = true;
  explicit FieldReader(JsonPlace place) : place_(std::move(place)) {}

  template <typename T>
  void operator()(const char* key, T& value) {
    read(place_.member(key), value);
  }
  template <typename T>
  void unlessEmpty(const char* key, T& value) {
    if (place_.has(key)) (*this)(key, value);
  }
  void told(const char*, const Json&) {}
  template <typename T, typename Names>
  void choice(const char* key, T& value, const Names& names, const char* what) {
    const JsonPlace at = place_.member(key);
    const std::string name = at.text();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) at.fail(fmt::format("unknown {} '{}'", what, name), kRemedy);
    value = static_cast<T>(found - names.begin());
  }
  [[nodiscard]] JsonPlace at(const char* key) const { return place_.member(key); }
  template <typename Describe>
  void inside(const char* key, Describe describeInside) {
    FieldReader fields(place_.member(key));
    describeInside(fields);
  }

  static void read(const JsonPlace& at, double& value) {
    const bool none = at.value().is_null();
    if (!none && !at.value().is_number()) at.fail("a number or null is expected", kRemedy);
    value = none ? std::numeric_limits<double>::quiet_NaN() : at.number();
  }
  static void read(const JsonPlace& at, std::optional<double>& value) {
    double number = 0;
    read(at, number);
    value = std::isnan(number) ? std::nullopt : std::optional(number);
  }
  static void read(const JsonPlace& at, std::string& value) { value = at.text(); }
  static void read(const JsonPlace& at, bool& value) { value = at.boolean(); }
  static void read(const JsonPlace& at, std::map<std::string, std::uintmax_t>& sizes) {
    if (!at.value().is_object()) at.fail("an object is expected", kRemedy);
    for (const auto& item : at.value().items()) read(at.member(item.key().c_str()), sizes[item.key()]);
  }
  template <std::integral T>
  static void read(const JsonPlace& at, T& value) {
    const Json& json = at.value();
    const bool fits = json.is_number_unsigned()
                          ? std::in_range<T>(json.get<std::uint64_t>())
                          : json.is_number_integer() && std::in_range<T>(json.get<std::int64_t>());
    if (!fits) {
      at.fail(fmt::format("a whole number from {} to {} is expected", std::numeric_limits<T>::min(),
                          std::numeric_limits<T>::max()),
              kRemedy);
    }
    value = json.get<T>();
  }
  static void read(const JsonPlace& at, VolumeRange& range) {
    std::array<int, 2> ends{};
    read(at, ends);
    range = {ends[0], ends[1]};
  }
  template <typename T>
  static void read(const JsonPlace& at, std::vector<T>& values) {
    values.resize(at.elements());
    for (std::size_t i = 0; i < values.size(); ++i) read(at.element(i), values[i]);
  }
  template <typename T, std::size_t n>
  static void read(const JsonPlace& at, std::array<T, n>& values) {
    if (at.elements() != n) at.fail(fmt::format("a list of {} is expected", n), kRemedy);
    for (std::size_t i = 0; i < n; ++i) read(at.element(i), values[i]);
  }
  template <typename T>
  static void read(const JsonPlace& at, T& thing) {
    FieldReader fields(at);
    describe(fields, thing);
  }

  static constexpr const char* kRemedy = "Make the file again";

 private:
  JsonPlace place_;
};

}  // namespace study

#endif
