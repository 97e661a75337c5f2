#include "tav/loaded_loop.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <vector>

#include "io/cnvtcfile.h"
#include "tav/at_once.h"
#include "tav/voxel_writer.h"

namespace tav {
namespace {

constexpr std::size_t kPieceVoxels = 1024;  // four batches of a kernel

// The grid in pieces, and how many voxels of each are computed.
class Pieces {
 public:
  Pieces(const ConditionJobs& condition, int threads)
      : condition_(condition), voxels_(gridOf(condition.files[0]->header).voxels()) {
    included_.resize((voxels_ + kPieceVoxels - 1) / kPieceVoxels);
    atOnce(static_cast<std::size_t>(threads), [&](std::size_t thread) {
      const std::size_t all = included_.size(), parts = static_cast<std::size_t>(threads);
      for (std::size_t i = thread * all / parts; i < (thread + 1) * all / parts; ++i)
        included_[i] = Inclusion(condition_.jobs[0], data(i), voxels(i)).count();
    });
  }

  [[nodiscard]] std::size_t size() const { return included_.size(); }
  [[nodiscard]] static std::size_t firstVoxel(std::size_t piece) { return piece * kPieceVoxels; }
  [[nodiscard]] std::size_t voxels(std::size_t piece) const {
    return std::min(kPieceVoxels, voxels_ - firstVoxel(piece));
  }
  [[nodiscard]] std::size_t included(std::size_t piece) const { return included_[piece]; }
  // Of all pieces before this one.
  [[nodiscard]] std::size_t includedBefore(std::size_t piece) const {
    const auto end = included_.begin() + static_cast<std::ptrdiff_t>(piece);
    return std::accumulate(included_.begin(), end, std::size_t{0});
  }
  [[nodiscard]] std::vector<VoxelData> data(std::size_t piece) const {
    std::vector<VoxelData> data;
    for (const VtcFile* const file : condition_.files) data.push_back(file->dataAt(firstVoxel(piece)));
    return data;
  }
  // The piece with which part `index` of `parts` begins: each has as many voxels to compute.
  [[nodiscard]] std::size_t beginOf(std::size_t index, std::size_t parts) const {
    const std::size_t before = includedBefore(size()) * index / parts;
    std::size_t piece = 0, sum = 0;
    while (piece < size() && sum + included_[piece] <= before && index > 0) sum += included_[piece++];
    return index == parts ? size() : piece;
  }

 private:
  const ConditionJobs& condition_;
  std::size_t voxels_;
  std::vector<std::size_t> included_;
};

// What one thread computes: some pieces in a row.
class Lane {
 public:
  // Its streams go on behind what the pieces before it draw.
  Lane(const ConditionJobs& condition, const Pieces& pieces, std::size_t first, std::size_t end)
      : pieces_(pieces), first_(first), end_(end), counts_(condition.jobs.size()) {
    for (const VoxelJob& job : condition.jobs) {
      streams_.push_back(*job.random);
      streams_.back().skip(pieces.includedBefore(first) * drawsPerVoxel(job));
    }
  }

  void compute(const VoxelPath& prepared, std::span<RawResult* const> results,
               const std::atomic<bool>* cancel) {
    std::vector<simo::RandomStream*> streams;
    for (simo::RandomStream& stream : streams_) streams.push_back(&stream);
    const std::unique_ptr<VoxelPath> path = prepared.beside(streams);
    for (std::size_t piece = first_; piece < end_; ++piece) {
      stopIf(cancel);
      path->compute(pieces_.voxels(piece), pieces_.data(piece), places(piece, results));
    }
  }

  // When all lanes are done: the last one leaves the streams behind all draws.
  void finish(const ConditionJobs& condition, std::span<RawResult* const> results) const {
    for (std::size_t i = 0; i < streams_.size(); ++i) {
      *condition.jobs[i].random = streams_[i];
      VoxelCounts& counts = results[i]->counts;
      counts.skipped += counts_[i].skipped;
      counts.illDefined += counts_[i].illDefined;
      counts.surrogatesIllDefined += counts_[i].surrogatesIllDefined;
    }
  }

 private:
  std::vector<VoxelResults> places(std::size_t piece, std::span<RawResult* const> results) {
    std::vector<VoxelResults> places;
    for (std::size_t i = 0; i < results.size(); ++i) {
      VoxelResults& place = places.emplace_back(resultsFrom(Pieces::firstVoxel(piece), *results[i]));
      place.counts = &counts_[i];
      if (place.furtherNulls != nullptr) place.furtherRoom = &place.furtherNulls->block(piece);
    }
    return places;
  }

  const Pieces& pieces_;
  std::size_t first_, end_;
  std::vector<VoxelCounts> counts_;  // per job, as the streams
  std::vector<simo::RandomStream> streams_;
};

}  // namespace

bool isLoaded(const ConditionJobs& condition) {
  return !condition.files.empty() && std::all_of(condition.files.begin(), condition.files.end(),
                                                 [](const VtcFile* file) { return file->loaded != nullptr; });
}

void runLoadedLoop(const ConditionJobs& condition, VoxelPath& path, std::span<RawResult* const> results,
                   const LoopThreads& threads) {
  const int wanted = std::max(threads.threads, 1);
  const Pieces pieces(condition, wanted);
  for (RawResult* const result : results) {
    startResult(*result);
    for (std::size_t piece = 0; result->furtherNulls != nullptr && piece < pieces.size(); ++piece)
      result->furtherNulls->append(pieces.included(piece));
  }
  stopIf(threads.cancel);
  path.begin(condition.jobs);
  const auto count = std::min(static_cast<std::size_t>(wanted), std::max<std::size_t>(pieces.size(), 1));
  std::vector<Lane> lanes;
  for (std::size_t i = 0; i < count; ++i)
    lanes.emplace_back(condition, pieces, pieces.beginOf(i, count), pieces.beginOf(i + 1, count));
  atOnce(count, [&](std::size_t i) { lanes[i].compute(path, results, threads.cancel); });
  for (const Lane& lane : lanes) lane.finish(condition, results);
}

}  // namespace tav
