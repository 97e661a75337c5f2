// NR maps: the map set of the current anatomy.
#include <fmt/core.h>

#include <cmath>
#include <new>

#include "host/exports.h"
#include "host/operation.h"
#include "host/workspace.h"

namespace {

using host::MapSet;
using host::Operation;
using host::perform;

constexpr int kMaxMaps = 10000;
constexpr std::size_t kMaxValues = std::size_t{1} << 32U;  // 16 GB of maps
constexpr std::int32_t kMaxColor = 0xFFFFFF;

// The current set, whose lent memory must be undamaged.
MapSet& currentMaps(Operation& op) {
  MapSet* maps = op.workspace().maps();
  op.require(maps != nullptr, "there are no maps, they must be created or loaded first");
  const std::string damage = maps->damage();
  op.require(damage.empty(), damage);
  return *maps;
}

MapSet::Map& mapAt(Operation& op, int index) {
  MapSet& maps = currentMaps(op);
  return maps.maps()[op.index(index, maps.maps().size(), "map")];
}

void requireNumber(Operation& op, float value, const char* what) {
  op.require(!std::isnan(value), fmt::format("the {} is not a number", what));
}

void requireColor(Operation& op, std::int32_t color, const char* what) {
  op.require(color >= 0 && color <= kMaxColor, fmt::format("the {} colour has more than 24 bits", what));
}

void checkParameters(Operation& op, const NR_VMP_Header& header, const MapSet::Map& map) {
  op.field(header.name, "map name");
  requireNumber(op, header.lowerThreshold, "lower threshold");
  requireNumber(op, header.upperThreshold, "upper threshold");
  requireColor(op, header.positiveColorFrom, "first positive");
  requireColor(op, header.positiveColorTo, "last positive");
  requireColor(op, header.negativeColorFrom, "first negative");
  requireColor(op, header.negativeColorTo, "last negative");
  op.require(header.fdrThresholds == map.thresholds.data(), "the table of thresholds is not the host's");
}

void deleteMaps(Operation& op) {
  if (op.workspace().maps() != nullptr) currentMaps(op);
  op.workspace().deleteMaps();
}

}  // namespace

int zqGetNRVMPsOfCurrentVMR(NR_VMPs_Header* header) {
  return perform("zqGetNRVMPsOfCurrentVMR", 0, [&](Operation& op) {
    op.record(header, "header") = NR_VMPs_Header{};
    if (op.workspace().maps() == nullptr) return 0;
    *header = currentMaps(op).header();
    return 1;
  });
}

float* zqGetNRVMPOfCurrentVMR(int index, NR_VMP_Header* header) {
  return perform("zqGetNRVMPOfCurrentVMR", static_cast<float*>(nullptr), [&](Operation& op) {
    MapSet::Map& map = mapAt(op, index);
    op.record(header, "header") = map.header;
    return map.values.data();
  });
}

int zqSetNRVMPParametersOfCurrentVMR(int index, NR_VMP_Header* header) {
  return perform("zqSetNRVMPParametersOfCurrentVMR", 0, [&](Operation& op) {
    MapSet::Map& map = mapAt(op, index);
    checkParameters(op, op.record(header, "header"), map);
    map.header = *header;
    return 1;
  });
}

int zqLoadNRVMPsToCurrentVMR(const char* path) {
  return perform("zqLoadNRVMPsToCurrentVMR", 0, [&](Operation& op) {
    op.require(op.workspace().anatomy().has_value(), "no anatomy is open");
    op.workspace().loadMaps(op.text(path, "path"));
    return 1;
  });
}

int zqSaveNRVMPsOfCurrentVMR(const char* path) {
  return perform("zqSaveNRVMPsOfCurrentVMR", 0, [&](Operation& op) {
    currentMaps(op);
    op.workspace().saveMaps(op.text(path, "path"));
    op.frontEnd().showSavedMaps(op.workspace().savedMaps().back());
    return 1;
  });
}

int zqCreateNRVMPsForCurrentVMR(int nrOfMaps, int /*reserved*/, int nrOfThresholds, NR_VMPs_Header* header) {
  return perform("zqCreateNRVMPsForCurrentVMR", 0, [&](Operation& op) {
    const host::Box box = host::boxOf(op.record(header, "header"));
    op.require(op.workspace().anatomy().has_value(), "no anatomy is open");
    op.require(nrOfMaps >= 1 && nrOfMaps <= kMaxMaps, std::to_string(nrOfMaps) + " maps cannot be created");
    op.require(nrOfThresholds >= 0 && nrOfThresholds <= kMaxMaps,
               std::to_string(nrOfThresholds) + " thresholds cannot be created");
    op.require(box.problem().empty(), box.problem());
    if (static_cast<std::size_t>(nrOfMaps) > kMaxValues / box.nrOfCells()) throw std::bad_alloc();
    deleteMaps(op);
    op.workspace().createMaps(box, nrOfMaps, nrOfThresholds);
    return 1;
  });
}

int zqDeleteNRVMPsOfCurrentVMR() {
  return perform("zqDeleteNRVMPsOfCurrentVMR", 0, [&](Operation& op) {
    deleteMaps(op);
    return 1;
  });
}

int zqSetNRVMPsParamsDisplayRange(NR_VMPs_Header* header) {
  return perform("zqSetNRVMPsParamsDisplayRange", 0, [&](Operation& op) {
    const MapSet& maps = currentMaps(op);
    op.require(host::boxOf(op.record(header, "header")) == maps.box(), "the box is not that of the maps");
    return 1;
  });
}
