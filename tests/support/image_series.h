// A time series in memory, to be changed and written again.
#ifndef TAVMAP_TESTS_SUPPORT_IMAGE_SERIES_H
#define TAVMAP_TESTS_SUPPORT_IMAGE_SERIES_H

#include <filesystem>
#include <vector>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"

struct Series {
  formats::ImageHeader header;
  std::vector<float> values;  // volume by volume
  float& at(int x, int y, int z, int volume) {
    return values[static_cast<std::size_t>(volume) * header.size.voxels() + header.size.index(x, y, z)];
  }
};

inline Series readSeries(const std::filesystem::path& file) {
  Series series{formats::readImageHeader(file.string()), {}};
  for (int volume = 0; volume < series.header.volumes; ++volume) {
    const formats::Image3D image = formats::readVolume(file.string(), volume);
    series.values.insert(series.values.end(), image.values.begin(), image.values.end());
  }
  return series;
}

inline void writeSeries(const std::filesystem::path& file, const Series& series) {
  formats::NiftiWriter writer(file.string(), series.header);
  writer.writeValues(series.values.data(), series.values.size());
  writer.commit();
}

#endif
