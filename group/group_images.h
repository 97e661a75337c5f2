// The maps of one cell, read into memory.
#ifndef TAVMAP_GROUP_GROUP_IMAGES_H
#define TAVMAP_GROUP_GROUP_IMAGES_H

#include <cstddef>
#include <filesystem>
#include <vector>

#include "formats/image.h"
#include "group/group_cells.h"
#include "inference/model.h"

namespace study {

struct GroupImages {
  formats::ImageHeader header;      // of the first map; all lie on its grid
  std::vector<std::size_t> voxels;  // those for which any row has a value, ascending indices of the grid
  std::vector<float> values;        // [row][voxel of `voxels`], NaN where the row has none
  std::size_t rows = 0;
  [[nodiscard]] inference::Values borrowed() const { return {rows, voxels.size(), values.data()}; }
};

// rows: of the cell, in this order. A value is there where a map was computed outside its reference; of a
// difference, where both were. Memory: rows times the grid, in floats. Throws formats::FileError, InputError
// when maps lie on different grids or none has any value.
[[nodiscard]] GroupImages readGroupImages(const std::filesystem::path& outDir, const GroupCell& cell,
                                          const std::vector<std::size_t>& rows);

}  // namespace study

#endif
