#include "formats/series_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace formats {
namespace {

constexpr std::size_t kChunkBytes = std::size_t{2} << 20U;  // stays in the second-level cache
constexpr std::size_t kChunkUnit = 64;                      // voxels: the width of a tile of time_courses.cpp
constexpr std::size_t kGatherBytes = std::size_t{64} << 20U;  // volumes on their way to the file

std::size_t voxelsPerChunk(std::size_t bytesPerVoxel) {
  return std::max<std::size_t>(kChunkBytes / bytesPerVoxel / kChunkUnit, 1) * kChunkUnit;
}

}  // namespace

SeriesStore::SeriesStore(const VoxelRuns& kept, std::size_t volumes, std::size_t valueBytes,
                         std::size_t courseValueBytes, std::size_t memoryBytes, VtcWriter& writer)
    : kept_(kept),
      volumes_(volumes),
      valueBytes_(valueBytes),
      writer_(writer),
      rowBytes_(kept.count() * valueBytes),
      rows_(volumes),
      chunkVoxels_(voxelsPerChunk(volumes * valueBytes)) {
  if (volumes_ * rowBytes_ > memoryBytes) {
    rows_ = std::clamp<std::size_t>(std::min(kGatherBytes, memoryBytes) / rowBytes_, 1, volumes_ - 1);
    chunk_.resize(std::min(chunkVoxels_, kept.count()) * volumes_ * valueBytes_);
  }
  planChunks(volumes * courseValueBytes);
  allocate(rows_ * rowBytes_);
}

void SeriesStore::planChunks(std::size_t courseBytes) {
  for (std::size_t rank = 0; rank < kept_.count(); rank += chunkVoxels_) {
    chunkStart_.push_back(kept_.voxelOf(rank) * courseBytes);
  }
}

// Not cleared: every byte is written before it is read. Large pages, where the system has them, save
// a third of the time that filling the memory takes.
void SeriesStore::allocate(std::size_t bytes) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20U;
  const std::size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
  bytes_.reset(static_cast<char*>(std::aligned_alloc(kLargePage, whole)));
  if (bytes_ == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  (void)::madvise(bytes_.get(), whole, MADV_HUGEPAGE);  // advice: a refusal changes nothing
#endif
}

char* SeriesStore::nextVolume() {
  if (filled_ == rows_) flushRows();
  return bytes_.get() + filled_++ * rowBytes_;
}

void SeriesStore::finish() {
  if (waitsInFile()) flushRows();
}

void SeriesStore::flushRows() {
  for (std::size_t c = 0; c < chunks(); ++c) {
    const std::size_t rank = c * chunkVoxels_;
    const std::size_t bytes = std::min(chunkVoxels_, kept_.count() - rank) * valueBytes_;
    writer_.writeRowsAt(bytes_.get() + rank * valueBytes_, filled_, bytes, rowBytes_,
                        chunkStart_[c] + flushed_ * bytes);
  }
  flushed_ += filled_;
  filled_ = 0;
}

SeriesChunk SeriesStore::chunk(std::size_t index) {
  const std::size_t rank = index * chunkVoxels_, count = std::min(chunkVoxels_, kept_.count() - rank);
  if (!waitsInFile()) return {rank, count, {bytes_.get() + rank * valueBytes_, rowBytes_}, 0};
  const std::size_t bytes = count * valueBytes_;
  writer_.readAt(chunk_.data(), volumes_ * bytes, chunkStart_[index]);
  return {rank, count, {chunk_.data(), bytes}, chunkStart_[index] + volumes_ * bytes};
}

}  // namespace formats
