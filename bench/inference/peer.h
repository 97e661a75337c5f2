// mrclusterstats of Debian's package mrtrix3 on the same group, where it is installed.
#ifndef TAVMAP_BENCH_INFERENCE_PEER_H
#define TAVMAP_BENCH_INFERENCE_PEER_H

#include <string>
#include <vector>

#include "bench/inference/made_group.h"
#include "bench/study/child.h"

namespace bench {

[[nodiscard]] bool isPeerInstalled();

// The group's maps, mask and one-sample design in a folder of their own under the system's temporary one.
[[nodiscard]] std::string writeForPeer(const MadeGroup& group);

// Sign flips on two threads, enhanced by 6 neighbours.
Cost runPeer(const std::string& folder, int shuffles);

// A map that it wrote ("tvalue", "tfce"), at the group's voxels.
[[nodiscard]] std::vector<float> readPeerMap(const std::string& folder, const std::string& name,
                                             const MadeGroup& group);

}  // namespace bench

#endif
