// What is asked of the engine while a person looks, and what it answers.
#ifndef TAVMAP_LIVE_LIVE_MAPS_H
#define TAVMAP_LIVE_LIVE_MAPS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "live/reference.h"
#include "tav/run_observer.h"

namespace live {

struct Ask {
  Reference reference;
  std::string condition;
  int order = 1;
  int draws = 20;                // per voxel, of the full result
  std::set<tav::MapType> types;  // maps; at least one
  bool operator==(const Ask&) const = default;
};

// A draft has one null draw per voxel, of 250 surrogates at most, thresholds from it that are provisional,
// and no p. Its values are final.
enum class Care { kDraft, kFull };

// Arrays have a value per cell of the study, in its order.
struct LiveMap {
  tav::MapType type;
  std::vector<float> values;
  std::vector<float>
      p;  // among the null values of all voxels; empty in a draft and for kinds without thresholds
  std::vector<tav::MapThreshold> thresholds;  // by ascending q
};

struct LiveMaps {
  Ask ask;
  Care care = Care::kDraft;
  std::string reference;       // its name
  std::size_t voxels = 0;      // that are averaged
  std::array<double, 3> mm{};  // their middle
  std::vector<LiveMap> maps;
  std::vector<tav::VoxelStatus> status;  // per cell
  std::vector<bool> isReference;         // per cell
  std::map<std::string, std::vector<float>>
      courses;                     // the reference's mean series by run, all prepared volumes
  unsigned effectiveVolumes = 0;   // less the order per interval
  std::vector<std::string> notes;  // on the reference, in words

  [[nodiscard]] const LiveMap* of(tav::MapType type) const;  // null: not asked for
};

}  // namespace live

#endif
