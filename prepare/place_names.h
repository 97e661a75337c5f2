// What the places of the runs' grid are called: the labels of an atlas on that grid.
#ifndef TAVMAP_PREPARE_PLACE_NAMES_H
#define TAVMAP_PREPARE_PLACE_NAMES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "prepare/label_volume.h"
#include "request/request.h"

namespace study {

class PlaceNames {
 public:
  explicit PlaceNames(LabelVolume volume);

  // Label of a voxel, by its index in the grid; 0: background.
  [[nodiscard]] std::int32_t labelAt(std::size_t voxel) const { return volume_.labels[voxel]; }
  // "none" for the background, "label7" for a label without a name.
  [[nodiscard]] std::string nameOf(std::int32_t label) const;
  [[nodiscard]] std::string nameAt(std::size_t voxel) const { return nameOf(labelAt(voxel)); }
  [[nodiscard]] const std::string& file() const { return volume_.file; }  // the label image
  // Of labels and names, wherever they were read from: equal keys give equal names to equal places.
  [[nodiscard]] const std::string& key() const { return key_; }

 private:
  LabelVolume volume_;
  std::string key_;
};

// From the first label image among the request's references that has this very grid. Null when there is
// none: a label of the nearest voxel may be that of a neighbour. Throws formats::FileError.
[[nodiscard]] std::shared_ptr<const PlaceNames> readPlaceNames(const Request& request, const Grid& grid);

}  // namespace study

#endif
