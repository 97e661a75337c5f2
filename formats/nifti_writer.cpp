#include "formats/nifti_writer.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "formats/data_types.h"
#include "formats/file_error.h"
#include "formats/nifti_header.h"

namespace formats {
namespace {

constexpr std::size_t kPieceValues = 65536;

bool endsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

ImageHeader checked(ImageHeader header, const std::string& path) {
  for (const int extent : {header.size.x, header.size.y, header.size.z, header.volumes}) {
    if (extent < 1 || extent > std::numeric_limits<std::int16_t>::max()) {
      throw FileError(path,
                      fmt::format("an image of {} x {} values does not fit a NIfTI-1 header",
                                  toText(header.size), header.volumes),
                      "Write smaller images, 32,767 along an axis at most");
    }
  }
  header.slope = 1;
  header.intercept = 0;
  return header;
}

template <typename Stored, typename In>
bool store(const In* values, std::size_t count, Stored* out) {
  if constexpr (std::is_floating_point_v<Stored>) {
    std::transform(values, values + count, out, [](In value) { return static_cast<Stored>(value); });
    return true;
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      const double rounded = std::nearbyint(static_cast<double>(values[i]));
      const bool fits = rounded >= static_cast<double>(std::numeric_limits<Stored>::min()) &&
                        rounded <= static_cast<double>(std::numeric_limits<Stored>::max());
      if (!fits) return false;
      out[i] = static_cast<Stored>(rounded);
    }
    return true;
  }
}

}  // namespace

NiftiWriter::NiftiWriter(const std::string& path, ImageHeader header, Durability durability)
    : header_(checked(std::move(header), path)),
      file_(path, durability),
      valuesLeft_(header_.size.voxels() * static_cast<std::size_t>(header_.volumes)) {
  if (endsIn(path, ".gz")) gzip_ = std::make_unique<GzipWriter>(file_);
  const std::string bytes = encodeNifti1Header(header_);
  writeBytes(bytes.data(), bytes.size());
}

void NiftiWriter::writeBytes(const void* data, std::size_t bytes) {
  if (gzip_) {
    gzip_->write(data, bytes);
  } else {
    file_.write(data, bytes);
  }
}

void NiftiWriter::writeStored(const void* values, std::size_t count) {
  if (count > valuesLeft_)
    throw FileError(file_.path(), "too many values for the header", "Report this as an error of the program");
  valuesLeft_ -= count;
  writeBytes(values, count * bytesOf(header_.dataType));
}

void NiftiWriter::writeValues(const float* values, std::size_t count) {
  convertAndWrite(values, count);
}
void NiftiWriter::writeValues(const std::int32_t* values, std::size_t count) {
  convertAndWrite(values, count);
}

template <typename In>
void NiftiWriter::convertAndWrite(const In* values, std::size_t count) {
  withStoredType(header_.dataType, [&](auto sample) {
    std::vector<decltype(sample)> piece(std::min(count, kPieceValues));
    for (std::size_t done = 0; done < count;) {
      const std::size_t now = std::min(count - done, piece.size());
      if (!store(values + done, now, piece.data())) {
        throw FileError(file_.path(),
                        std::string("a value does not fit the type ") + nameOf(header_.dataType),
                        "Choose float32");
      }
      writeStored(piece.data(), now);
      done += now;
    }
  });
}

void NiftiWriter::commit() {
  if (valuesLeft_ != 0)
    throw FileError(file_.path(), "too few values for the header", "Report this as an error of the program");
  if (gzip_) gzip_->finish();
  file_.commit();
}

void writeImage(const std::string& path, const Image3D& image) {
  NiftiWriter writer(path, image.header);
  writer.writeValues(image.values.data(), image.values.size());
  writer.commit();
}

void writeLabelImage(const std::string& path, const LabelImage& image) {
  ImageHeader header = image.header;
  header.intentCode = kLabelIntent;
  NiftiWriter writer(path, header);
  writer.writeValues(image.labels.data(), image.labels.size());
  writer.commit();
}

}  // namespace formats
