// A map's values for the search for thresholds: as they stand in memory, or computed as they are
// looked at, so that the null maps of many draws need no memory of their own.
#ifndef TAVMAP_TAV_MAP_SOURCE_H
#define TAVMAP_TAV_MAP_SOURCE_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "tav/map_values.h"

namespace tav {

// Values as they are: signs, zeros and NaN included.
class MapSource {
 public:
  using Piece = std::span<const float>;

  virtual ~MapSource() = default;
  [[nodiscard]] virtual std::size_t size() const = 0;
  // What every piece is to be multiplied by.
  [[nodiscard]] virtual float scale() const { return 1.0F; }
  // Calls `use` with all values in their order, piece after piece, before they are scaled. A piece holds
  // during its call.
  virtual void forEachPiece(const std::function<void(Piece)>& use) const = 0;
  // The values at 0, stride, 2 stride ..., scaled.
  [[nodiscard]] virtual std::vector<float> every(std::size_t stride) const = 0;
};

using MapPieces = std::vector<std::span<const float>>;

class StoredMap : public MapSource {
 public:
  explicit StoredMap(MapPieces pieces) : pieces_(std::move(pieces)) {}
  [[nodiscard]] std::size_t size() const override;
  void forEachPiece(const std::function<void(Piece)>& use) const override;
  [[nodiscard]] std::vector<float> every(std::size_t stride) const override;

 private:
  MapPieces pieces_;
};

// One type's map of raw measures. What `raw` and `pars` refer to outlives it. When `cancel`, if there is one,
// is set, forEachPiece() throws Cancelled before its next piece.
class ComputedMap : public MapSource {
 public:
  ComputedMap(MapType type, const std::vector<RawValues>& raw, const TAV_Pars& pars,
              const std::atomic<bool>* cancel = nullptr)
      : type_(type), raw_(raw), pars_(pars), cancel_(cancel) {}
  [[nodiscard]] std::size_t size() const override;
  [[nodiscard]] float scale() const override { return mapScale(type_, pars_); }
  void forEachPiece(const std::function<void(Piece)>& use) const override;
  [[nodiscard]] std::vector<float> every(std::size_t stride) const override;

 private:
  MapType type_;
  const std::vector<RawValues>& raw_;
  const TAV_Pars& pars_;
  const std::atomic<bool>* cancel_;
};

}  // namespace tav

#endif
