#include "group/group_images.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>
#include <optional>

#include "formats/file_error.h"
#include "formats/nifti.h"
#include "request/problem.h"
#include "results/results.h"

namespace study {
namespace {

namespace fs = std::filesystem;

class Reader {
 public:
  Reader(const fs::path& outDir, const GroupCell& cell) : outDir_(outDir), cell_(cell) {}

  GroupImages read(const std::vector<std::size_t>& rows) {
    std::vector<std::vector<float>> maps;
    for (const std::size_t row : rows) maps.push_back(rowOf(cell_.rows[row]));
    GroupImages images{*header_, withAnyValue(maps), {}, rows.size()};
    if (images.voxels.empty()) {
      throw InputError(
          fmt::format("no voxel has a value in any map of reference '{}', condition '{}' ({} and others)",
                      cell_.reference, cell_.condition, firstFile_));
    }
    images.values.reserve(rows.size() * images.voxels.size());
    for (const std::vector<float>& map : maps)
      for (const std::size_t voxel : images.voxels) images.values.push_back(map[voxel]);
    return images;
  }

 private:
  std::vector<float> rowOf(const CellRow& row) {
    std::vector<float> values = valuesOf(row.plus);
    if (row.minus.image.empty()) return values;
    const std::vector<float> minus = valuesOf(row.minus);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] -= minus[i];
    return values;
  }

  std::vector<float> valuesOf(const CellImage& at) {
    const std::string file = (outDir_ / at.image).string(), status = (outDir_ / at.status).string();
    formats::Image3D map = formats::readImage(file);
    const formats::LabelImage codes = formats::readLabelImage(status);
    requireGrid(map.header, file);
    requireGrid(codes.header, status);
    for (std::size_t i = 0; i < map.values.size(); ++i) {
      const bool isComputed = codes.labels[i] == static_cast<std::int32_t>(StatusCode::kComputed);
      if (!isComputed || !std::isfinite(map.values[i]))
        map.values[i] = std::numeric_limits<float>::quiet_NaN();
    }
    return std::move(map.values);
  }

  void requireGrid(const formats::ImageHeader& header, const std::string& file) {
    if (!header_) {
      header_ = header;
      firstFile_ = file;
      return;
    }
    try {
      formats::requireSameGrid(*header_, firstFile_, header, file);
    } catch (const formats::FileError& error) {
      throw InputError(
          fmt::format("{}\nGroup maps need one grid: run the participant level on runs of a template "
                      "space, for instance with --space MNI152NLin2009cAsym",
                      error.what()));
    }
  }

  static std::vector<std::size_t> withAnyValue(const std::vector<std::vector<float>>& maps) {
    std::vector<std::size_t> voxels;
    for (std::size_t i = 0; i < maps[0].size(); ++i) {
      for (const std::vector<float>& map : maps) {
        if (std::isnan(map[i])) continue;
        voxels.push_back(i);
        break;
      }
    }
    return voxels;
  }

  const fs::path& outDir_;
  const GroupCell& cell_;
  std::optional<formats::ImageHeader> header_;
  std::string firstFile_;
};

}  // namespace

GroupImages readGroupImages(const fs::path& outDir, const GroupCell& cell,
                            const std::vector<std::size_t>& rows) {
  return Reader(outDir, cell).read(rows);
}

}  // namespace study
