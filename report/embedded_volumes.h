// Volumes inside a page, for its script: numbers of one or two bytes per voxel, compressed, as text.
#ifndef TAVMAP_REPORT_EMBEDDED_VOLUMES_H
#define TAVMAP_REPORT_EMBEDDED_VOLUMES_H

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <vector>

#include "formats/json_file.h"

namespace report {

// A script element that holds the bytes.
[[nodiscard]] std::string volumeElement(const std::string& id, std::span<const std::uint8_t> bytes);

// value = offset + step * code; the code 0 stands for no value. 16 bits: the lower byte first.
struct CodedValues {
  int bits = 8;
  double step = 1, offset = 0;
  std::vector<std::uint8_t> bytes;
};

// Values that are not finite get the code 0; the others lie within half a step of what their codes stand for.
// bits: 8 or 16.
[[nodiscard]] CodedValues coded(std::span<const float> values, int bits);
// The same of values from 0 on: the code 1 stands for 0.
[[nodiscard]] CodedValues codedFromZero(std::span<const float> values, int bits);

// How exactly maps are kept, so that a page of many maps can still be mailed.
struct EmbeddingPlan {
  int bits = 16;              // of effects
  bool withP = true;          // of single voxels
  double strongestShare = 1;  // of each map's voxels, the largest in magnitude; 1: all
  bool withMaps = true;       // false: there are too many for any
};

// The most exact of the plans whose volumes take at most `limit` bytes of text, by what such maps were
// measured to take. views: conditions of all references; voxels: of each map.
[[nodiscard]] EmbeddingPlan embeddingPlan(std::size_t views, std::size_t voxels, std::size_t limit);

// The magnitude that this share of the finite values reaches; 0 of none.
[[nodiscard]] float strongest(std::span<const float> values, double share);

}  // namespace report

#endif
