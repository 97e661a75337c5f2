// From raw measures to a condition's maps in the store: values, thresholds, display settings.
#include <algorithm>
#include <span>
#include <utility>

#include "io/cnvtcfile.h"
#include "io/crdutils.h"
#include "tav/family_wise.h"
#include "tav/fdr_thresholds.h"
#include "tav/map_kinds.h"
#include "tav/map_values.h"
#include "tav/null_p.h"
#include "tav/null_z.h"
#include "tav/search_curve.h"
#include "tav/tail_thresholds.h"
#include "tav/tav.h"

namespace tav {
namespace {

// Thresholds and display range of a map that holds `thresholds`.
void setRange(const MapRange& range, const TAV_Pars& request, const std::vector<MapThreshold>& thresholds,
              MapHeader& header) {
  for (const MapThreshold& threshold : thresholds) header.thresholds.push_back(threshold.threshold);
  if (range.isSearched) {
    header.lowerThreshold = thresholds.empty() ? 0.0F : thresholds.front().threshold;
    header.upperThreshold = range.factor * header.lowerThreshold;
  } else {
    header.lowerThreshold = range.lower;
    header.upperThreshold = request.*range.upper;
  }
}

MapHeader headerOf(const MapKind& kind, const std::string& conditionName, const TAV_Pars& request,
                   const std::vector<MapThreshold>& thresholds) {
  MapHeader header;
  header.name = conditionName + ": " + kind.label;
  header.positive = kind.positive;
  header.negative = kind.negative;
  setRange(kind.range, request, thresholds, header);
  return header;
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
  const io::GridSize grid = gridOf(header);
  std::vector<std::int32_t> coordinates(3 * static_cast<std::size_t>(voi.nVoxels));
  toAnatomicalCoordinates(voi.voxels, voi.nVoxels, voi.talCoords != 0, coordinates.data());
  std::vector<std::size_t> cells;
  for (const voicrd& cell : cellsOfVoxels(header, coordinates.data(), voi.nVoxels).cells)
    cells.push_back(grid.index(cell.x, cell.y, cell.z));
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

// So many paths more of the same kind.
std::vector<std::unique_ptr<VoxelPath>> pathsLike(const VoxelPath& path, std::size_t count,
                                                  std::ostream& errors) {
  std::vector<std::unique_ptr<VoxelPath>> paths;
  for (std::size_t i = 0; i < count; ++i) paths.push_back(makeVoxelPath(path.name(), errors));
  return paths;
}

// The constant that divides no q.
constexpr int kNoDependence = 1;

// One condition's way into the store.
class MapTransfer {
 public:
  // `leftOut`: voxels that take no part in the search for thresholds.
  MapTransfer(const TAV_Cond_Pars& cond, const TAV_Pars& request, const RunOptions& options,
              const RawValues& raw, const std::vector<RawValues>& nulls,
              const std::vector<VoxelStatus>& status, const std::vector<std::size_t>& leftOut,
              MapStore& store, std::ostream& errors)
      : cond_(cond),
        request_(request),
        options_(options),
        raw_(raw),
        nulls_(nulls),
        status_(status),
        leftOut_(leftOut),
        store_(store),
        errors_(errors) {}

  // Fills the store's map, whose values are `values`, and describes it.
  MapOutcome transfer(const MapKind& kind, int index, float* values) {
    computeMapValues(kind.type, raw_, request_, values);
    MapOutcome map{kind.type, values, {}};
    if (kind.range.isSearched) map.thresholds = search(kind.type, {values, raw_.size});
    if (kind.range.isSearched && options_.nullP) map.nullP = pValues(kind.type, {values, raw_.size});
    if (kind.range.isSearched && options_.searchCurve) map.search = curve(map);
    const auto measure = measureOf(kind.type);
    if (measure && options_.nullZ) map.nullZ = nullZ(*measure, raw_, {nulls_, status_, options_.nullDraws});
    store_.describe(index, headerOf(kind, cond_.name, request_, map.thresholds));
    return map;
  }

 private:
  std::vector<MapThreshold> search(MapType type, std::span<const float> values) {
    checkCvConstant(request_.cvConstant, errors_);
    const bool isGiven = options_.fdrConstant > 0;
    std::vector<float> levels = request_.qThresholds;
    std::sort(levels.begin(), levels.end());
    std::vector<float> divided = levels;
    if (isGiven) {
      for (float& q : divided) q = static_cast<float>(static_cast<double>(q) / options_.fdrConstant);
    }
    std::vector<MapThreshold> found = searchTailThresholds(
        options_.thresholdRule, divided, StoredMap(without(leftOut_, values)),
        ComputedMap(type, nulls_, request_), isGiven ? kNoDependence : request_.cvConstant);
    for (std::size_t i = 0; i < found.size(); ++i) found[i].q = levels[i];
    return found;
  }

  // Of what search() looks at.
  [[nodiscard]] SearchCurve curve(const MapOutcome& map) const {
    if (options_.thresholdRule != ThresholdRule::kStepUp) return {};
    std::vector<std::size_t> ranks;
    for (const MapThreshold& threshold : map.thresholds) ranks.push_back(threshold.nrPassing);
    SearchCurve found = searchCurve(StoredMap(without(leftOut_, {map.values, raw_.size})),
                                    ComputedMap(map.type, nulls_, request_), ranks);
    found.constant = options_.fdrConstant > 0 ? options_.fdrConstant
                                              : dependenceConstant(request_.cvConstant, found.voxels);
    return found;
  }

  [[nodiscard]] std::vector<float> pValues(MapType type, std::span<const float> values) const {
    return nullPValues(StoredMap({values}), ComputedMap(nullKindOf(type), nulls_, request_));
  }

  const TAV_Cond_Pars& cond_;
  const TAV_Pars& request_;
  const RunOptions& options_;
  RawValues raw_;
  const std::vector<RawValues>& nulls_;
  const std::vector<VoxelStatus>& status_;
  const std::vector<std::size_t>& leftOut_;
  MapStore& store_;
  std::ostream& errors_;
};

}  // namespace

int Computer::compareWithWholeMaps(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                   const TAV_Pars& request, const std::vector<std::size_t>& leftOut,
                                   std::ostream& errors) {
  if (options_.fweDraws < 1 || options_.fitForm != FitForm::kLeastSquares) return kSuccess;
  PassReference reference{{}, &random};
  for (const TAV_VTC_intv_set& set : cond.vtcIntvSets)
    reference.courses.push_back(getFetchedVoiTc(voi.name, set.srcVtcName));
  const ConditionJobs condition = makeConditionJobs(cond, {reference}, request, options_);
  const std::vector<std::unique_ptr<VoxelPath>> further =
      pathsLike(*voxelPath_, static_cast<std::size_t>(std::max(options_.threads, 1)) - 1, errors);
  std::vector<VoxelPath*> paths = {voxelPath_.get()};
  for (const auto& path : further) paths.push_back(path.get());
  return computeFamilyWise(
      condition, request, options_.fweDraws, clusterFormingLevels(outcome_.nulls, request), leftOut, paths,
      outcome_.familyWise,
      [this](int percent) {
        if (observer_ != nullptr) observer_->onNullMaps(percent);
      },
      errors);
}

int Computer::transferConditionResults(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, int condIndex,
                                       const TAV_Pars& request, std::ostream& errors) {
  outcome_.nulls = rawNulls(*raw.null, raw.furtherNulls.get());
  std::vector<std::size_t> leftOut;
  if (options_.searchOutsideReference) leftOut = cellsOf(voi, request);
  MapTransfer maps(cond, request, options_, rawValues(*raw.observed), outcome_.nulls, outcome_.status,
                   leftOut, *store_, errors);
  int index = static_cast<int>(request.mapTypes.size()) * condIndex;
  for (const MapType type : request.mapTypes) {
    float* const values = store_->values(index);
    if (values == nullptr) {
      errors << "Failed to retrieve an allocated CMP map-pointer for VOI '" << voi.name << "', Condition '"
             << cond.name << "'";
      return kTerminalError;
    }
    if (!isKnown(type)) {
      errors << "ERROR : Unknown TAV map-type encountered";
      return kTerminalError;
    }
    outcome_.maps.push_back(maps.transfer(mapKind(type), index++, values));
  }
  outcome_.condIndex = condIndex;
  const int status = compareWithWholeMaps(voi, cond, request, leftOut, errors);
  if (status != kSuccess) return status;
  if (observer_ != nullptr) observer_->onCondition(outcome_);
  return kSuccess;
}

}  // namespace tav
