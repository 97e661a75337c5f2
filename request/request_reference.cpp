#include <fmt/core.h>

#include "request/request_tables.h"

namespace study {
namespace {

const std::vector<std::string> kReferenceKeys = {"name",      "label_image", "label_table",
                                                 "labels",    "probability", "mask",
                                                 "centre_mm", "radius_mm",   "voxels"};

constexpr double kLeastProbability = 0.001;

ReferenceKind kindOf(const TomlTable& table) {
  const std::vector<std::pair<const char*, ReferenceKind>> kinds = {{"label_image", ReferenceKind::kLabels},
                                                                    {"mask", ReferenceKind::kMask},
                                                                    {"centre_mm", ReferenceKind::kSphere},
                                                                    {"voxels", ReferenceKind::kVoxels}};
  const std::pair<const char*, ReferenceKind>* found = nullptr;
  for (const auto& kind : kinds) {
    if (!table.has(kind.first)) continue;
    if (found != nullptr) table.fail(kind.first, fmt::format("and '{}' exclude each other", found->first));
    found = &kind;
  }
  if (found == nullptr) {
    failAt(table.file(), table.line(),
           "[[reference]] needs one of 'label_image', 'mask', 'centre_mm', 'voxels'");
  }
  return found->second;
}

void parseLabels(const TomlTable& table, const RequestPlace& place, ReferenceRequest& reference) {
  reference.image = existingFile(table, "label_image", place);
  reference.table = existingFile(table, "label_table", place);
  reference.probability = table.number("probability", 0, kLeastProbability, 1);
  reference.labels = table.texts("labels", true);
  reference.allLabels = reference.labels == std::vector<std::string>{"all"};
  if (reference.allLabels) reference.labels.clear();
  if (reference.labels.empty() && !reference.allLabels) {
    failAt(table.file(), reference.line,
           "[[reference]] with 'label_image' needs 'labels': names, indices or \"all\"");
  }
}

void parseSphere(const TomlTable& table, ReferenceRequest& reference) {
  const std::vector<double> centre = table.numbers("centre_mm");
  if (centre.size() != 3) table.fail("centre_mm", "must hold x, y and z in millimetres");
  for (std::size_t i = 0; i < 3; ++i) reference.centreMm[i] = centre[i];
  if (!table.has("radius_mm"))
    failAt(table.file(), reference.line, "[[reference]] with 'centre_mm' needs 'radius_mm'");
  reference.radiusMm = table.number("radius_mm", 0, 0.01, 1000);
}

std::array<int, 3> parseVoxel(const TomlTable& table, const toml::node& node) {
  const toml::array* triple = node.as_array();
  if (triple == nullptr || triple->size() != 3) table.fail("voxels", "must hold triples such as [12, 8, 20]");
  std::array<int, 3> voxel{};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto value = (*triple)[i].value_exact<std::int64_t>();
    if (!value || *value < 0 || *value > 32767) table.fail("voxels", "must hold whole numbers from 0");
    voxel[i] = static_cast<int>(*value);
  }
  return voxel;
}

void parseVoxels(const TomlTable& table, ReferenceRequest& reference) {
  for (const toml::node& node : *table.array("voxels")) reference.voxels.push_back(parseVoxel(table, node));
  if (reference.voxels.empty()) table.fail("voxels", "is empty; a reference needs at least one voxel");
}

void parseKind(const TomlTable& table, const RequestPlace& place, ReferenceRequest& reference) {
  switch (reference.kind) {
    case ReferenceKind::kLabels:
      parseLabels(table, place, reference);
      break;
    case ReferenceKind::kMask:
      reference.image = existingFile(table, "mask", place);
      break;
    case ReferenceKind::kSphere:
      parseSphere(table, reference);
      break;
    case ReferenceKind::kVoxels:
      parseVoxels(table, reference);
      break;
  }
}

// Keys that belong to another kind of reference than the chosen one would be silently ignored.
void refuseForeignKeys(const TomlTable& table, const ReferenceRequest& reference) {
  const auto refuse = [&](const char* key, ReferenceKind kind, const char* with) {
    if (table.has(key) && reference.kind != kind) table.fail(key, fmt::format("goes with '{}' only", with));
  };
  refuse("labels", ReferenceKind::kLabels, "label_image");
  refuse("label_table", ReferenceKind::kLabels, "label_image");
  refuse("probability", ReferenceKind::kLabels, "label_image");
  refuse("radius_mm", ReferenceKind::kSphere, "centre_mm");
}

}  // namespace

ReferenceRequest parseReference(const toml::table& node, const RequestPlace& place) {
  const TomlTable table(node, place.file, "[[reference]]", kReferenceKeys);
  ReferenceRequest reference;
  reference.line = table.line();
  reference.kind = kindOf(table);
  reference.name = table.text("name");
  refuseForeignKeys(table, reference);
  parseKind(table, place, reference);
  const bool oneLabel = !reference.allLabels && reference.labels.size() == 1;
  if (reference.kind == ReferenceKind::kLabels && !reference.name.empty() && !oneLabel) {
    table.fail("name", "can rename a single label only");
  }
  if (reference.kind != ReferenceKind::kLabels && reference.name.empty()) {
    failAt(place.file, reference.line, "[[reference]] needs a 'name'");
  }
  return reference;
}

}  // namespace study
