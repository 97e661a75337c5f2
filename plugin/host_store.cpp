#include "plugin/host_store.h"

#include <algorithm>
#include <cstdio>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/save_text.h"

namespace {

NR_VMPs_Header setHeader(const tav::MapSetShape& shape) {
  NR_VMPs_Header header{};
  header.nrOfMaps = shape.nrOfMaps;
  header.nrOfFDRThresholds = static_cast<std::int32_t>(shape.thresholdNames.size());
  header.xStart = shape.box.xStart;
  header.xEnd = shape.box.xEnd;
  header.yStart = shape.box.yStart;
  header.yEnd = shape.box.yEnd;
  header.zStart = shape.box.zStart;
  header.zEnd = shape.box.zEnd;
  header.resolution = shape.box.resolution;
  return header;
}

template <std::size_t Size>
void fillField(const std::string& text, char (&field)[Size]) {
  std::snprintf(field, Size, "%s", text.c_str());
}

}  // namespace

int HostStore::discard() {
  return zqDeleteNRVMPsOfCurrentVMR();
}

bool HostStore::create(const tav::MapSetShape& shape, std::ostream& errors) {
  NR_VMPs_Header header = setHeader(shape);
  if (zqCreateNRVMPsForCurrentVMR(header.nrOfMaps, 0, header.nrOfFDRThresholds, &header) == 0) {
    errors << "Could not create an CMP map-structure to write TAV results";
    return false;
  }
  if (zqGetNRVMPsOfCurrentVMR(&header) == 0) {
    errors << "Could not get access to created CMP map-structure for write TAV results";
    return false;
  }
  for (std::size_t i = 0; i < shape.thresholdNames.size(); ++i)
    std::snprintf(header.fdrThresholdNames[i], kThresholdNameBytes, "%s", shape.thresholdNames[i].c_str());
  return true;
}

float* HostStore::values(int map) {
  header_ = {};
  return zqGetNRVMPOfCurrentVMR(map, &header_);
}

void HostStore::describe(int map, const tav::MapHeader& header) {
  fillField(header.name, header_.name);
  header_.kind = tav::kDirectedInfluence;
  header_.lowerThreshold = header.lowerThreshold;
  header_.upperThreshold = header.upperThreshold;
  header_.positiveColorFrom = header.positive.from;
  header_.positiveColorTo = header.positive.to;
  header_.negativeColorFrom = header.negative.from;
  header_.negativeColorTo = header.negative.to;
  header_.useColors = 1;
  std::copy(header.thresholds.begin(), header.thresholds.end(), header_.fdrThresholds);
  zqSetNRVMPParametersOfCurrentVMR(map, &header_);
}

void HostStore::saveMaps(const std::string& path) {
  zqSaveNRVMPsOfCurrentVMR(path.c_str());
}

std::string HostStore::saveLog(const std::string& path, const std::string& text) {
  return saveTextWhole(path, text);
}

void HostLog::onLog(const std::string& text) {
  zqLogText(text.c_str());
}
