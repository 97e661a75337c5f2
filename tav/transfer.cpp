// From raw measures to a condition's maps in the store: values, thresholds, display settings.
#include <algorithm>
#include <span>
#include <utility>

#include "io/cnvtcfile.h"
#include "io/crdutils.h"
#include "tav/at_once.h"
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
  MapTransfer(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, const TAV_Pars& request,
              const RunOptions& options, const RawValues& raw, const std::vector<RawValues>& nulls,
              const std::vector<VoxelStatus>& status, const std::vector<std::size_t>& leftOut,
              MapStore& store, std::ostream& errors)
      : voi_(voi),
        cond_(cond),
        request_(request),
        options_(options),
        raw_(raw),
        nulls_(nulls),
        status_(status),
        leftOut_(leftOut),
        store_(store),
        errors_(errors) {}

  // Fills the store's maps from this index on and describes them, one after the other or, on several threads,
  // all together. Returns a Status.
  int transferAll(int index, std::vector<MapOutcome>& outcomes) {
    const std::vector<MapType> types(request_.mapTypes.begin(), request_.mapTypes.end());
    const std::size_t together = options_.threads > 1 ? types.size() : 1;
    for (std::size_t first = 0, end = 0; first < types.size(); first = end) {
      end = std::min(first + together, types.size());
      std::vector<MapInHand> maps;
      for (std::size_t i = first; i < end; ++i) {
        if (!take(types[i], index + static_cast<int>(i), maps)) return kTerminalError;
      }
      compute(maps);
      for (MapInHand& map : maps) {
        store_.describe(map.index,
                        headerOf(mapKind(map.outcome.type), cond_.name, request_, map.outcome.thresholds));
        outcomes.push_back(std::move(map.outcome));
      }
    }
    return kSuccess;
  }

 private:
  struct MapInHand {
    int index;
    float* values;
    MapOutcome outcome;
  };

  bool take(MapType type, int index, std::vector<MapInHand>& maps) {
    float* const values = store_.values(index);
    if (values == nullptr) {
      errors_ << "Failed to retrieve an allocated CMP map-pointer for VOI '" << voi_.name << "', Condition '"
              << cond_.name << "'";
      return false;
    }
    if (!isKnown(type)) {
      errors_ << "ERROR : Unknown TAV map-type encountered";
      return false;
    }
    if (mapKind(type).range.isSearched) checkCvConstant(request_.cvConstant, errors_);
    maps.push_back({index, values, {type, values, {}}});
    return true;
  }

  // p takes longest and comes first, so that threads end together, also with a single map.
  void compute(std::vector<MapInHand>& maps) const {
    shareOut(maps.size(), options_.threads,
             [&](std::size_t i) { computeMapValues(maps[i].outcome.type, raw_, request_, maps[i].values); });
    shareOut(2 * maps.size(), options_.threads, [&](std::size_t task) {
      MapOutcome& map = maps[task % maps.size()].outcome;
      if (task < maps.size()) {
        computeP(map);
      } else {
        judge(map);
      }
    });
  }

  void computeP(MapOutcome& map) const {
    if (options_.nullP && mapKind(map.type).range.isSearched)
      map.nullP = pValues(map.type, {map.values, raw_.size});
  }

  void judge(MapOutcome& map) const {
    const bool isSearched = mapKind(map.type).range.isSearched;
    if (isSearched) map.thresholds = search(map.type, {map.values, raw_.size});
    if (isSearched && options_.searchCurve) map.search = curve(map);
    const auto measure = measureOf(map.type);
    if (measure && options_.nullZ) map.nullZ = nullZ(*measure, raw_, {nulls_, status_, options_.nullDraws});
  }

  [[nodiscard]] ComputedMap nullMap(MapType type) const { return {type, nulls_, request_, options_.cancel}; }

  [[nodiscard]] std::vector<MapThreshold> search(MapType type, std::span<const float> values) const {
    const bool isGiven = options_.fdrConstant > 0;
    std::vector<float> levels = request_.qThresholds;
    std::sort(levels.begin(), levels.end());
    std::vector<float> divided = levels;
    if (isGiven) {
      for (float& q : divided) q = static_cast<float>(static_cast<double>(q) / options_.fdrConstant);
    }
    std::vector<MapThreshold> found =
        searchTailThresholds(options_.thresholdRule, divided, StoredMap(without(leftOut_, values)),
                             nullMap(type), isGiven ? kNoDependence : request_.cvConstant);
    for (std::size_t i = 0; i < found.size(); ++i) found[i].q = levels[i];
    return found;
  }

  // Of what search() looks at.
  [[nodiscard]] SearchCurve curve(const MapOutcome& map) const {
    if (options_.thresholdRule != ThresholdRule::kStepUp) return {};
    std::vector<std::size_t> ranks;
    for (const MapThreshold& threshold : map.thresholds) ranks.push_back(threshold.nrPassing);
    SearchCurve found =
        searchCurve(StoredMap(without(leftOut_, {map.values, raw_.size})), nullMap(map.type), ranks);
    found.constant = options_.fdrConstant > 0 ? options_.fdrConstant
                                              : dependenceConstant(request_.cvConstant, found.voxels);
    return found;
  }

  [[nodiscard]] std::vector<float> pValues(MapType type, std::span<const float> values) const {
    return nullPValues(StoredMap({values}), nullMap(nullKindOf(type)));
  }

  const TAV_VOI_Pars& voi_;
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
  MapTransfer maps(voi, cond, request, options_, rawValues(*raw.observed), outcome_.nulls, outcome_.status,
                   leftOut, *store_, errors);
  int status = maps.transferAll(static_cast<int>(request.mapTypes.size()) * condIndex, outcome_.maps);
  if (status != kSuccess) return status;
  outcome_.condIndex = condIndex;
  status = compareWithWholeMaps(voi, cond, request, leftOut, errors);
  if (status != kSuccess) return status;
  if (observer_ != nullptr) observer_->onCondition(outcome_);
  return kSuccess;
}

}  // namespace tav
