#include "tav/map_source.h"

#include <algorithm>
#include <array>

#include "tav/at_once.h"

namespace tav {
namespace {

// Values computed at once: they stay in the first-level cache until they are looked at.
constexpr std::size_t kChunk = 2048;

RawValues part(const RawValues& raw, std::size_t first, std::size_t count) {
  return {{raw.measures[0] + first, raw.measures[1] + first, raw.measures[2] + first}, count};
}

// Calls `use` with each element and index within it that lies at a multiple of `stride` of the
// whole.
template <class List, class SizeOf, class Use>
void forEvery(std::size_t stride, const List& list, SizeOf sizeOf, Use use) {
  std::size_t next = 0;
  for (const auto& element : list) {
    for (; next < sizeOf(element); next += stride) use(element, next);
    next -= sizeOf(element);
  }
}

}  // namespace

std::size_t StoredMap::size() const {
  std::size_t size = 0;
  for (const Piece piece : pieces_) size += piece.size();
  return size;
}

void StoredMap::forEachPiece(const std::function<void(Piece)>& use) const {
  for (const Piece piece : pieces_) use(piece);
}

std::vector<float> StoredMap::every(std::size_t stride) const {
  std::vector<float> values;
  forEvery(
      stride, pieces_, [](const Piece& piece) { return piece.size(); },
      [&](const Piece& piece, std::size_t i) { values.push_back(piece[i]); });
  return values;
}

std::size_t ComputedMap::size() const {
  std::size_t size = 0;
  for (const RawValues& raw : raw_) size += raw.size;
  return size;
}

void ComputedMap::forEachPiece(const std::function<void(Piece)>& use) const {
  std::array<float, kChunk> values;
  for (const RawValues& raw : raw_) {
    for (std::size_t first = 0; first < raw.size; first += kChunk) {
      stopIf(cancel_);
      const std::size_t count = std::min(kChunk, raw.size - first);
      use({unscaledMapValues(type_, part(raw, first, count), pars_, values.data()), count});
    }
  }
}

std::vector<float> ComputedMap::every(std::size_t stride) const {
  std::vector<float> values;
  forEvery(
      stride, raw_, [](const RawValues& raw) { return raw.size; },
      [&](const RawValues& raw, std::size_t i) {
        computeMapValues(type_, part(raw, i, 1), pars_, &values.emplace_back());
      });
  return values;
}

}  // namespace tav
