#include "inspect/describe.h"

#include <fmt/core.h>

#include "formats/file_error.h"
#include "formats/file_kinds.h"
#include "formats/label_table.h"
#include "formats/protocol.h"
#include "formats/voi_list.h"

namespace inspect {
namespace {

using formats::Json;

bool isScalarList(const Json& value) {
  if (!value.is_array()) return false;
  for (const auto& item : value) {
    if (item.is_structured()) return false;
  }
  return true;
}

std::string scalarText(const Json& value) {
  if (value.is_null()) return "none";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_number_float()) return value.dump();
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value.get<double>());
  return text;
}

std::string oneLine(const Json& value) {
  if (!value.is_array()) return scalarText(value);
  std::string text;
  for (const auto& item : value) text += (text.empty() ? "" : ", ") + scalarText(item);
  return text;
}

std::string keyText(std::string key) {
  for (char& c : key) c = c == '_' ? ' ' : c;
  return key;
}

void appendObject(const Json& object, const std::string& indent, std::string& text);

// The first line of an item carries the dash, the others line up below it.
void appendItems(const Json& list, const std::string& indent, std::string& text) {
  for (const auto& item : list) {
    if (!item.is_object()) {
      text += fmt::format("{}- {}\n", indent, oneLine(item));
      continue;
    }
    const std::size_t start = text.size();
    appendObject(item, indent + "  ", text);
    text.replace(start, indent.size() + 2, indent + "- ");
  }
}

void appendObject(const Json& object, const std::string& indent, std::string& text) {
  for (const auto& [key, value] : object.items()) {
    text += fmt::format("{}{}:", indent, keyText(key));
    if (!value.is_structured() || isScalarList(value)) {
      text += fmt::format(" {}\n", oneLine(value));
      continue;
    }
    text += "\n";
    if (value.is_object()) appendObject(value, indent + "  ", text);
    if (value.is_array()) appendItems(value, indent + "  ", text);
  }
}

Json describeLabelTable(const std::string& path) {
  const formats::LabelTable table = formats::readLabelTable(path);
  Json json{{"file", path}, {"kind", "label table"}, {"regions", Json::array()}};
  for (const auto& label : table.labels)
    json["regions"].push_back({{"index", label.index}, {"name", label.name}});
  return json;
}

Json describeProtocol(const std::string& path, double trMs) {
  const formats::Protocol protocol = formats::readProtocol(path, trMs);
  const bool inVolumes = protocol.unit == formats::TimeUnit::kVolumes;
  Json json{{"file", path}, {"kind", inVolumes ? "protocol in volumes" : "events table"}};
  if (!inVolumes) json["joined_with_tr_ms"] = trMs;
  json["conditions"] = Json::array();
  for (const auto& condition : protocol.conditions) {
    Json intervals = Json::array();
    for (const auto& interval : condition.intervals) intervals.push_back({interval.start, interval.end});
    json["conditions"].push_back(
        {{"name", condition.name}, {inVolumes ? "intervals_volumes" : "intervals_ms", intervals}});
  }
  return json;
}

}  // namespace

Json describeFile(const std::string& path, const DescribeOptions& options) {
  if (formats::isVtcName(path)) return describeVtc(path);
  if (formats::isMapSetName(path)) return describeMapSet(path, options);
  if (path.ends_with(".json")) return describeVoiList(path);
  if (formats::isTableName(path)) return describeTable(path, options);
  if (path.ends_with(".xml")) return describeLabelTable(path);
  if (formats::isNiftiName(path)) return describeImage(path, options);
  throw formats::FileError(path, "the ending of its name is not known here",
                           "Give a .vtc, .nii, .nii.gz, .tav, .tsv, .prt, .xml or .json file");
}

Json describeTable(const std::string& path, const DescribeOptions& options) {
  return formats::isLabelTable(path) ? describeLabelTable(path) : describeProtocol(path, options.trMs);
}

Json describeVoiList(const std::string& path) {
  const formats::VoiList list = formats::readVoiJson(path);
  Json json{{"file", path}, {"kind", "VOI list"}, {"talairach", list.talairach}, {"regions", Json::array()}};
  for (const auto& voi : list.vois)
    json["regions"].push_back({{"name", voi.name}, {"voxels", voi.voxels.size()}});
  return json;
}

std::string toReadableText(const Json& document) {
  std::string text;
  appendObject(document, "", text);
  return text;
}

}  // namespace inspect
