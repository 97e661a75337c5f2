#include "tav/family_wise.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>

#include "tav/at_once.h"
#include "tav/map_kinds.h"
#include "tav/map_source.h"
#include "tav/piece_reader.h"

namespace tav {
namespace {

constexpr int kDrawsPerLane = 100;
constexpr std::size_t kMostSampled = 400000;

// The results of one piece under one chunk of draws.
class PieceResults {
 public:
  PieceResults(std::size_t voxels, int draws) : further_(draws - 1), status_(voxels) {
    for (auto* const planes : {&truth_, &first_})
      for (auto& plane : *planes) plane.resize(voxels);
  }

  VoxelResults places() {
    further_.clear();
    VoxelResults results{
        {}, {}, status_.data(), further_.drawsPerVoxel() > 0 ? &further_ : nullptr, &counts_};
    for (std::size_t m = 0; m < kNrOfMeasures; ++m) {
      results.measures[m] = truth_[m].data();
      results.nullMeasures[m] = first_[m].data();
    }
    return results;
  }

  // The cells of the grid that were not skipped, `firstCell` being the piece's first.
  void collectCells(std::size_t firstCell, std::size_t count) {
    cells_.clear();
    for (std::size_t i = 0; i < count; ++i) {
      if (status_[i] == VoxelStatus::kBelowInclusion) continue;
      for (std::size_t m = 0; m < kNrOfMeasures; ++m) first_[m][cells_.size()] = first_[m][i];
      cells_.push_back(static_cast<std::uint32_t>(firstCell + i));
    }
  }

  // Calls use(draw of the chunk, raw values of the cells), after collectCells().
  template <class Use>
  void forEachDraw(Use use) const {
    use(std::size_t{0}, RawValues{{first_[0].data(), first_[1].data(), first_[2].data()}, cells_.size()});
    for (const FurtherNulls::Block& block : further_.blocks())
      for (std::size_t draw = 0; draw < further_.drawsPerVoxel(); ++draw)
        use(draw + 1,
            RawValues{{block.draw(0, draw), block.draw(1, draw), block.draw(2, draw)}, cells_.size()});
  }
  [[nodiscard]] const std::vector<std::uint32_t>& cells() const { return cells_; }

 private:
  std::array<std::vector<float>, kNrOfMeasures> truth_, first_;
  FurtherNulls further_;
  std::vector<VoxelStatus> status_;
  VoxelCounts counts_;
  std::vector<std::uint32_t> cells_;
};

// Some draws of a chunk: what one thread computes.
class Lane {
 public:
  Lane(const TAV_Pars& request, const std::vector<std::size_t>& leftOut, VoxelPath& path,
       FamilyWise& familyWise)
      : request_(request), leftOut_(leftOut), path_(path), familyWise_(familyWise) {}

  void begin(VoxelJob job, int first, int draws) {
    job.nullDraws = draws;
    job.commonFirst = static_cast<std::uint32_t>(first);
    path_.begin({&job, 1});
    first_ = static_cast<std::size_t>(first);
    results_.emplace(gridOf(request_).slice(), draws);
  }

  // Lanes may do so at the same time: each touches its own draws alone.
  void compute(const PieceReader& reader) {
    const VoxelResults places = results_->places();
    path_.compute(reader.count(), reader.data(), {&places, 1});
    results_->collectCells(reader.first(), reader.count());
    if (!results_->cells().empty()) take();
  }

 private:
  void take() {
    const std::vector<std::size_t> out = leftOutOf(results_->cells());
    buffer_.resize(results_->cells().size());
    results_->forEachDraw([&](std::size_t draw, const RawValues& raw) {
      for (auto& [type, maxima] : familyWise_) {
        computeMapValues(nullKindOf(type), raw, request_, buffer_.data());
        for (const std::size_t i : out) buffer_[i] = 0;
        maxima.take(first_ + draw, results_->cells(), buffer_.data());
      }
    });
  }

  // Positions in `cells` that take no part.
  [[nodiscard]] std::vector<std::size_t> leftOutOf(const std::vector<std::uint32_t>& cells) const {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < cells.size(); ++i)
      if (std::binary_search(leftOut_.begin(), leftOut_.end(), cells[i])) positions.push_back(i);
    return positions;
  }

  const TAV_Pars& request_;
  const std::vector<std::size_t>& leftOut_;
  VoxelPath& path_;
  FamilyWise& familyWise_;
  std::size_t first_ = 0;
  std::optional<PieceResults> results_;
  std::vector<float> buffer_;
};

// One chunk of draws after the other over all pieces, each chunk shared out among the lanes.
class Chunks {
 public:
  Chunks(const ConditionJobs& condition, const TAV_Pars& request, const std::vector<std::size_t>& leftOut,
         std::span<VoxelPath* const> paths, FamilyWise& familyWise, std::ostream& errors)
      : condition_(condition), request_(request), errors_(errors) {
    for (VoxelPath* path : paths) lanes_.emplace_back(request, leftOut, *path, familyWise);
  }

  [[nodiscard]] int draws() const { return kDrawsPerLane * static_cast<int>(lanes_.size()); }

  [[nodiscard]] bool compute(int first, int draws) {
    const int lanes = std::min(static_cast<int>(lanes_.size()), draws);
    for (int i = 0, begin = 0, end = 0; i < lanes; ++i, begin = end) {
      end = draws * (i + 1) / lanes;
      lanes_[static_cast<std::size_t>(i)].begin(condition_.jobs[0], first + begin, end - begin);
    }
    PieceReader reader(condition_.files, gridOf(request_).slice(), static_cast<std::size_t>(request_.dimZ));
    while (reader.next(errors_))
      atOnce(static_cast<std::size_t>(lanes), [&](std::size_t lane) { lanes_[lane].compute(reader); });
    return !reader.hasFailed();
  }

 private:
  const ConditionJobs& condition_;
  const TAV_Pars& request_;
  std::vector<Lane> lanes_;
  std::ostream& errors_;
};

void findClusters(const TAV_Pars& request, std::size_t threads, FamilyWise& familyWise) {
  std::vector<NullMaxima*> all;
  for (auto& [type, maxima] : familyWise) all.push_back(&maxima);
  atOnce(std::max<std::size_t>(1, std::min(threads, all.size())), [&](std::size_t thread) {
    ClusterFinder finder(gridOf(request));
    for (std::size_t i = thread; i < all.size(); i += threads) all[i]->findClusters(finder);
  });
}

}  // namespace

MapType nullKindOf(MapType type) {
  return type == DTAV_IT ? DTAV : type;
}

std::map<MapType, float> clusterFormingLevels(const std::vector<RawValues>& nulls, const TAV_Pars& request) {
  std::map<MapType, float> levels;
  for (const MapType type : request.mapTypes) {
    if (!mapKind(type).range.isSearched) continue;
    const ComputedMap map(nullKindOf(type), nulls, request);
    std::vector<float> sample = map.every(std::max<std::size_t>(1, map.size() / kMostSampled));
    std::erase_if(sample, [](float value) { return value == 0 || !std::isfinite(value); });
    if (sample.empty()) continue;
    for (float& value : sample) value = std::abs(value);
    const auto rank = static_cast<std::ptrdiff_t>(kClusterFormingP * static_cast<double>(sample.size()));
    std::nth_element(sample.begin(), sample.begin() + rank, sample.end(), std::greater<>());
    levels[type] = sample[static_cast<std::size_t>(rank)];
  }
  return levels;
}

int computeFamilyWise(const ConditionJobs& condition, const TAV_Pars& request, int draws,
                      const std::map<MapType, float>& levels, const std::vector<std::size_t>& leftOut,
                      std::span<VoxelPath* const> paths, FamilyWise& familyWise,
                      const std::function<void(int)>& progress, std::ostream& errors) {
  const int available = std::min(draws, condition.jobs[0].nrOfSurrogates);
  familyWise.clear();
  for (const auto& [type, level] : levels)
    familyWise.emplace(type, NullMaxima(static_cast<std::size_t>(std::max(available, 0)), level));
  Chunks chunks(condition, request, leftOut, paths, familyWise, errors);
  for (int first = 0, next = 0; first < available; first = next) {
    next = std::min(first + chunks.draws(), available);
    if (!chunks.compute(first, next - first)) return kTerminalError;
    progress(100 * next / available);
  }
  findClusters(request, paths.size(), familyWise);
  return kSuccess;
}

}  // namespace tav
