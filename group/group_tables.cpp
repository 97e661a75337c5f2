#include "group/group_tables.h"

#include <fmt/core.h>

#include <cmath>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "formats/table.h"
#include "group/group_names.h"
#include "group/group_table.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

template <typename Row>
struct DescribedColumn {
  std::string name, description;
  std::function<std::string(const Row&)> cell;
};

struct PeakRow {
  const GroupPeak& peak;
  std::size_t number;
};
struct ValueRow {
  const GroupPeak& peak;
  std::size_t number;
  const GroupValue& value;
  std::string group;
};

std::string mmText(double mm) {
  return fmt::format("{}", std::round(mm * 1000) / 1000 + 0.0);
}

using PeakColumns = std::vector<DescribedColumn<PeakRow>>;

void addPlace(PeakColumns& columns) {
  columns.push_back({"cluster", "number of the cluster, from 1",
                     [](const PeakRow& row) { return fmt::format("{}", row.number); }});
  columns.push_back(
      {"by",
       "what makes it a finding at the level of the test: tfce (threshold-free cluster enhancement), "
       "maximum (the largest t of the map), mass (of clusters above a z); none: the largest |t| where "
       "nothing is found",
       [](const PeakRow& row) { return row.peak.by; }});
  columns.push_back({"sign", "of t: + or -", [](const PeakRow& row) { return row.peak.t < 0 ? "-" : "+"; }});
  columns.push_back(
      {"voxels", "of the cluster", [](const PeakRow& row) { return fmt::format("{}", row.peak.voxels); }});
  columns.push_back(
      {"volume_mm3", "of the cluster", [](const PeakRow& row) { return mmText(row.peak.volumeMm3); }});
  const char* const axes[] = {"x", "y", "z"};
  const char* const indices[] = {"i", "j", "k"};
  for (std::size_t axis = 0; axis < 3; ++axis)
    columns.push_back({axes[axis], "millimetres of the peak",
                       [axis](const PeakRow& row) { return mmText(row.peak.mm[axis]); }});
  for (std::size_t axis = 0; axis < 3; ++axis)
    columns.push_back({indices[axis], "voxel of the peak, from 0",
                       [axis](const PeakRow& row) { return fmt::format("{}", row.peak.voxel[axis]); }});
}

void addNumber(PeakColumns& columns, const char* name, const char* description, double GroupPeak::*member) {
  columns.push_back(
      {name, description, [member](const PeakRow& row) { return numberText(row.peak.*member); }});
}

void addVotes(PeakColumns& columns, const char* name, const char* description, int DirectionVotes::*member) {
  columns.push_back({name, description, [member](const PeakRow& row) {
                       return fmt::format("{}", row.peak.directions.*member);
                     }});
}

PeakColumns peakColumns(const GroupTestRecord& record) {
  PeakColumns columns;
  addPlace(columns);
  addNumber(columns, "effect", "estimate of the contrast at the peak", &GroupPeak::effect);
  addNumber(columns, "t", "at the peak", &GroupPeak::t);
  addNumber(columns, "z_score", "the normal value of the same probability as t", &GroupPeak::z);
  addNumber(columns, "p_fwe", "family-wise p at the peak, by the maximum of the map", &GroupPeak::pFwe);
  addNumber(columns, "p_fwe_tfce", "family-wise p at the peak, by threshold-free cluster enhancement",
            &GroupPeak::pTfce);
  addNumber(columns, "p_fwe_cluster", "family-wise p of the peak's cluster, by its mass; 1 outside any",
            &GroupPeak::pMass);
  addNumber(columns, "q_fdr", "the smallest false discovery rate at which the peak passes", &GroupPeak::qFdr);
  columns.push_back({"participants", "who have a value at the peak",
                     [](const PeakRow& row) { return fmt::format("{}", row.peak.participants); }});
  if (!record.hasVotes()) return columns;
  const char* const own =
      "in whose own map the direction at the peak survives reversed time: the reference leads";
  addVotes(columns, "reference_leads", own, &DirectionVotes::referenceLeads);
  addVotes(columns, "voxel_leads", "likewise: the voxel leads", &DirectionVotes::voxelLeads);
  addVotes(columns, "not_supported", "whose own map passes there without a supported direction",
           &DirectionVotes::notSupported);
  addVotes(columns, "not_tested", "whose own map does not pass there", &DirectionVotes::notTested);
  return columns;
}

std::vector<DescribedColumn<ValueRow>> valueColumns() {
  return {
      {"cluster", "number in the table of clusters",
       [](const ValueRow& row) { return fmt::format("{}", row.number); }},
      {"participant", "label, without sub-",
       [](const ValueRow& row) { return formats::tsvCell(row.value.participant); }},
      {"group", "value of the group column",
       [](const ValueRow& row) { return row.group.empty() ? "n/a" : formats::tsvCell(row.group); }},
      {"value", "of the participant at the peak",
       [](const ValueRow& row) { return numberText(row.value.value); }},
      {"t_without", "t at the peak without this participant",
       [](const ValueRow& row) { return numberText(row.value.tWithout); }},
  };
}

template <typename Row>
std::string headerOf(const std::vector<DescribedColumn<Row>>& columns) {
  std::string text;
  for (const DescribedColumn<Row>& column : columns) text += (text.empty() ? "" : "\t") + column.name;
  return text + "\n";
}

template <typename Row>
std::string rowOf(const std::vector<DescribedColumn<Row>>& columns, const Row& row) {
  std::string text;
  for (const DescribedColumn<Row>& column : columns) text += (text.empty() ? "" : "\t") + column.cell(row);
  return text + "\n";
}

template <typename Row>
Json described(const std::vector<DescribedColumn<Row>>& columns, const std::string& description) {
  Json json{{"Description", description}};
  for (const DescribedColumn<Row>& column : columns)
    json[column.name] = {{"Description", column.description}};
  return json;
}

std::string groupOf(const GroupTestRecord& record, const std::string& participant) {
  for (const GroupRow& row : record.rows)
    if (row.participant == participant) return row.level;
  return "";
}

struct ImageWords {
  const char *description, *units;
};

const std::map<std::string, ImageWords>& imageWords() {
  static const std::map<std::string, ImageWords> words = {
      {group_image::kEffect, {"estimate of the contrast", "those of the participants' maps"}},
      {group_image::kT, {"t of the contrast", "arbitrary"}},
      {group_image::kZ, {"the normal value of the same probability as t", "standard deviations"}},
      {group_image::kP, {"p of each voxel by itself, from its own shuffles", "-log10 of a probability"}},
      {group_image::kPFwe,
       {"family-wise p of each voxel, by the largest value of every shuffle", "probability"}},
      {group_image::kTfce, {"threshold-free cluster enhancement of z, with the sign of t", "arbitrary"}},
      {group_image::kPTfce,
       {"family-wise p of each voxel, by the largest enhanced value of every shuffle", "probability"}},
      {group_image::kPMass,
       {"family-wise p of each voxel's cluster, by the largest mass of every shuffle; 1 outside any cluster",
        "probability"}},
      {group_image::kQ, {"the smallest false discovery rate at which the voxel passes", "proportion"}},
      {group_image::kCount, {"participants who have a value", "number"}},
  };
  return words;
}

}  // namespace

std::string groupClusterTable(const GroupTestRecord& record) {
  const PeakColumns columns = peakColumns(record);
  std::string text = headerOf(columns);
  for (std::size_t i = 0; i < record.peaks.size(); ++i)
    text += rowOf(columns, PeakRow{record.peaks[i], i + 1});
  return text;
}

Json groupClusterSidecar(const GroupTestRecord& record) {
  return described(peakColumns(record), fmt::format("clusters of the test '{}': {}; {}", record.test,
                                                    record.question, groupValueWords(record)));
}

std::string groupValueTable(const GroupTestRecord& record) {
  const auto columns = valueColumns();
  std::string text = headerOf(columns);
  for (std::size_t i = 0; i < record.peaks.size(); ++i)
    for (const GroupValue& value : record.peaks[i].values)
      text += rowOf(columns, ValueRow{record.peaks[i], i + 1, value, groupOf(record, value.participant)});
  return text;
}

Json groupValueSidecar(const GroupTestRecord& record) {
  return described(valueColumns(), fmt::format("what participants bring to the peaks of the test '{}'; {}",
                                               record.test, groupValueWords(record)));
}

Json groupImageSidecar(const GroupTestRecord& record, const std::string& what) {
  const ImageWords& words = imageWords().at(what);
  Json json{{"Description", fmt::format("{}: {} ({}); {}", words.description, record.question, record.test,
                                        groupValueWords(record))},
            {"Units", words.units}};
  Json sources = Json::array();
  for (const GroupRow& row : record.rows)
    for (const std::string& image : row.images) sources.push_back(image);
  json["Sources"] = std::move(sources);
  json["Participants"] = record.rows.size();
  json["Exchange"] = record.exchange;
  json["Shuffles"] = record.shuffles;
  return json;
}

std::string groupValueWords(const GroupTestRecord& record) {
  std::string words = fmt::format("{}{} map of reference {}, {}",
                                  record.isZ ? "z against each voxel's own null values of the " : "",
                                  record.map, record.reference, record.condition);
  if (!record.sessions.empty()) words += fmt::format(", sessions {}", record.sessions);
  if (!record.session.empty()) words += fmt::format(", session {}", record.session);
  if (!record.task.empty()) words += fmt::format(", task {}", record.task);
  return words;
}

}  // namespace study
