// What the places of the runs' grid are called: the labels of an atlas.
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
  // volume: labels of the runs' voxels, wherever they come from; isResampled: from an image with another
  // grid.
  explicit PlaceNames(LabelVolume volume, bool isResampled = false);

  // Label of a voxel, by its index in the grid; 0: background.
  [[nodiscard]] std::int32_t labelAt(std::size_t voxel) const { return volume_.labels[voxel]; }
  // "none" for the background, "label7" for a label without a name.
  [[nodiscard]] std::string nameOf(std::int32_t label) const;
  [[nodiscard]] std::string nameAt(std::size_t voxel) const { return nameOf(labelAt(voxel)); }
  [[nodiscard]] const std::string& file() const { return volume_.file; }  // the label image
  [[nodiscard]] bool isResampled() const { return isResampled_; }
  // Of labels and names, wherever they were read from: equal keys give equal names to equal places.
  [[nodiscard]] const std::string& key() const { return key_; }

 private:
  LabelVolume volume_;
  bool isResampled_;
  std::string key_;
};

// From the first label image among the request's references that has this very grid, else from the first one,
// each voxel taking the label at its centre as references do. Null when there is no label image. Throws
// formats::FileError, and InputError for an image whose affine cannot be inverted.
[[nodiscard]] std::shared_ptr<const PlaceNames> readPlaceNames(const Request& request, const Grid& grid);

}  // namespace study

#endif
