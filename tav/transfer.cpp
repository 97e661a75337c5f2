// From raw measures to a condition's maps in the host: values, thresholds, display settings.
#include <algorithm>
#include <cstdio>
#include <span>
#include <utility>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "io/cnvtcfile.h"
#include "io/crdutils.h"
#include "tav/fdr_thresholds.h"
#include "tav/map_values.h"
#include "tav/tail_thresholds.h"
#include "tav/tav.h"

namespace tav {
namespace {

// How a map type is named and shown. 24-bit colours, red in the lowest byte: reds for influence
// of the reference, greens for influence on it, blues for the instantaneous part.
struct MapDisplay {
  const char* nameFormat;
  float upperFactor;  // upper display threshold over lower one
  std::int32_t positiveFrom, positiveTo;
  std::int32_t negativeFrom, negativeTo;
};
constexpr std::int32_t kMapKind = 101;
constexpr float kRcLowerThreshold = 0.2F;
constexpr std::array<MapDisplay, kNrOfMapTypes> kDisplays = {{
    {"%s: Ref2Vox", 3.0F, 64, 255, 0, 0},
    {"%s: Vox2Ref", 3.0F, 16384, 65280, 0, 0},
    {"%s: Inst", 5.0F, 4194304, 16711680, 0, 0},
    {"%s: dTAV", 3.0F, 64, 255, 16384, 65280},
    {"%s: dTAV IT", 3.0F, 64, 255, 16384, 65280},
    {"%s: dTAV RC", 0.0F, 64, 255, 16384, 65280},
}};

const MapDisplay& displayOf(MapType type) {
  return kDisplays[static_cast<std::size_t>(type)];
}

void setDisplay(MapType type, const std::string& conditionName, NR_VMP_Header& header) {
  const MapDisplay& display = displayOf(type);
  std::snprintf(header.name, sizeof header.name, display.nameFormat, conditionName.c_str());
  header.kind = kMapKind;
  header.positiveColorFrom = display.positiveFrom;
  header.positiveColorTo = display.positiveTo;
  header.negativeColorFrom = display.negativeFrom;
  header.negativeColorTo = display.negativeTo;
  header.useColors = 1;
}

void setThresholds(MapType type, const TAV_Pars& request, const std::vector<MapThreshold>& thresholds,
                   NR_VMP_Header& header) {
  for (std::size_t k = 0; k < thresholds.size(); ++k) header.fdrThresholds[k] = thresholds[k].threshold;
  if (type == DTAV_RC) {
    header.lowerThreshold = kRcLowerThreshold;
    header.upperThreshold = request.rcUpperThres;
  } else {
    header.lowerThreshold = thresholds.empty() ? 0.0F : thresholds.front().threshold;
    header.upperThreshold = displayOf(type).upperFactor * header.lowerThreshold;
  }
}

RawValues rawValues(const rawTAVMaps& maps) {
  return {{maps.values(0), maps.values(1), maps.values(2)}, maps.nrOfVoxels()};
}

RawValues rawValues(const FurtherNulls::Block& block) {
  return {{block.plane(0), block.plane(1), block.plane(2)}, block.planeSize()};
}

// Raw null measures of all draws.
std::vector<RawValues> rawNulls(const rawTAVMaps& first, const FurtherNulls* further) {
  std::vector<RawValues> raw{rawValues(first)};
  if (further == nullptr) return raw;
  for (const FurtherNulls::Block& block : further->blocks()) raw.push_back(rawValues(block));
  return raw;
}

// All files have the request's grid.
VTC_Header gridHeader(const TAV_Pars& request) {
  VTC_Header header{};
  header.xStart = request.vtcXStart;
  header.xEnd = request.vtcXEnd;
  header.yStart = request.vtcYStart;
  header.yEnd = request.vtcYEnd;
  header.zStart = request.vtcZStart;
  header.zEnd = request.vtcZEnd;
  header.resolution = request.vtcResolution;
  return header;
}

// The reference's cells of the grid, ascending.
std::vector<std::size_t> cellsOf(const TAV_VOI_Pars& voi, const TAV_Pars& request) {
  const VTC_Header header = gridHeader(request);
  const VtcGrid grid = gridOf(header);
  std::vector<std::int32_t> coordinates(3 * static_cast<std::size_t>(voi.nVoxels));
  toAnatomicalCoordinates(voi.voxels, voi.nVoxels, voi.talCoords != 0, coordinates.data());
  std::vector<std::size_t> cells;
  for (const voicrd& cell : cellsOfVoxels(header, coordinates.data(), voi.nVoxels).cells)
    cells.push_back(static_cast<std::size_t>(grid.indexOf(cell.x, cell.y, cell.z)));
  std::sort(cells.begin(), cells.end());
  return cells;
}

// What lies between the left-out values, whose indices ascend.
MapPieces without(const std::vector<std::size_t>& leftOut, std::span<const float> values) {
  MapPieces pieces;
  std::size_t first = 0;
  for (const std::size_t index : leftOut) {
    pieces.push_back(values.subspan(first, index - first));
    first = index + 1;
  }
  pieces.push_back(values.subspan(first));
  return pieces;
}

// One condition's way into the host's map set.
class MapTransfer {
 public:
  // `leftOut`: voxels that take no part in the search for thresholds.
  MapTransfer(const TAV_Cond_Pars& cond, const TAV_Pars& request, ThresholdRule rule, const RawValues& raw,
              const std::vector<RawValues>& nulls, std::vector<std::size_t> leftOut, std::ostream& errors)
      : cond_(cond),
        request_(request),
        rule_(rule),
        raw_(raw),
        nulls_(nulls),
        leftOut_(std::move(leftOut)),
        errors_(errors) {}

  // Fills the host's map `values` and its header, and stores the header.
  MapOutcome transfer(MapType type, int index, float* values, NR_VMP_Header& header) {
    computeMapValues(type, raw_, request_, values);
    MapOutcome map{type, values, {}};
    if (type != DTAV_RC) map.thresholds = search(type, {values, raw_.size});
    setDisplay(type, cond_.name, header);
    setThresholds(type, request_, map.thresholds, header);
    zqSetNRVMPParametersOfCurrentVMR(index, &header);
    return map;
  }

 private:
  std::vector<MapThreshold> search(MapType type, std::span<const float> values) {
    checkCvConstant(request_.cvConstant, errors_);
    return searchTailThresholds(rule_, request_.qThresholds, StoredMap(without(leftOut_, values)),
                                ComputedMap(type, nulls_, request_), request_.cvConstant);
  }

  const TAV_Cond_Pars& cond_;
  const TAV_Pars& request_;
  ThresholdRule rule_;
  RawValues raw_;
  const std::vector<RawValues>& nulls_;
  std::vector<std::size_t> leftOut_;
  std::ostream& errors_;
};

}  // namespace

int Computer::transferConditionResults(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, int condIndex,
                                       const TAV_Pars& request, std::ostream& errors) {
  const std::vector<RawValues> nulls = rawNulls(*rawMaps2, furtherNulls.get());
  std::vector<std::size_t> leftOut;
  if (options_.searchOutsideReference) leftOut = cellsOf(voi, request);
  MapTransfer maps(cond, request, options_.thresholdRule, rawValues(*rawMaps1), nulls, std::move(leftOut),
                   errors);
  int index = static_cast<int>(request.mapTypes.size()) * condIndex;
  for (const MapType type : request.mapTypes) {
    NR_VMP_Header header{};
    float* const values = zqGetNRVMPOfCurrentVMR(index, &header);
    if (values == nullptr) {
      errors << "Failed to retrieve an allocated CMP map-pointer for VOI '" << voi.name << "', Condition '"
             << cond.name << "'";
      return kTerminalError;
    }
    if (type > DTAV_RC) {
      errors << "ERROR : Unknown TAV map-type encountered";
      return kTerminalError;
    }
    outcome_.maps.push_back(maps.transfer(type, index++, values, header));
  }
  outcome_.condIndex = condIndex;
  if (observer_ != nullptr) observer_->onCondition(outcome_);
  return kSuccess;
}

}  // namespace tav
