#include "formats/vtc_export.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <vector>

#include "formats/byte_source.h"
#include "formats/file_error.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_sidecar.h"
#include "io/cnvtcfile.h"

namespace formats {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{4} << 20U;
constexpr int kTalairachCode = 3;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File openFile(const std::string& path) {
  (void)kindOfFile(path);
  return File(std::fopen(path.c_str(), "rb"));
}

GridSize sizeOf(const VTC_Header& header) {
  return gridOf(header);
}

// The exact repetition time: the record holds it rounded, the file's last header field does not.
double exactTrMs(std::FILE* file, const VTC_Header& header, bool isVersion2) {
  const long tail = isVersion2 ? 12 : 0;  // of version 2: fields behind the repetition time
  float trMs = 0;
  if (std::fseek(file, header.dataOffset - tail - 4, SEEK_SET) != 0) return header.tr;
  if (std::fread(&trMs, sizeof trMs, 1, file) != 1) return header.tr;
  return static_cast<double>(trMs);
}

bool isVersion2(std::FILE* file) {
  std::rewind(file);
  const int low = std::fgetc(file), high = std::fgetc(file);
  return low == 2 && high == 0;
}

ImageHeader imageHeaderOf(const std::string& vtcPath, const VTC_Header& header, std::FILE* file,
                          bool isShifted) {
  const VtcPlace place = placeOf(vtcPath, header);
  ImageHeader image;
  image.size = sizeOf(header);
  image.volumes = header.nrOfVolumes;
  image.series = true;
  image.dataType = header.dataType == kVtcFloatData || isShifted ? DataType::kFloat32 : DataType::kUint16;
  image.affine = image.qform = place.affine;
  image.sformCode = image.qformCode = place.spaceCode;
  image.trMs = exactTrMs(file, header, isVersion2(file));
  return image;
}

// Volumes [first, first + count) of the whole grid, gathered from one pass over the file.
template <typename Stored>
class VolumeGatherer {
 public:
  VolumeGatherer(std::FILE* file, const VTC_Header& header, const std::string& path,
                 const VtcSidecar& sidecar)
      : file_(file),
        header_(header),
        path_(path),
        shift_(static_cast<float>(sidecar.shift)),
        threshold_(static_cast<float>(sidecar.threshold)),
        unit_(1 / sidecar.scale),
        volumes_(static_cast<std::size_t>(header.nrOfVolumes)),
        pieceVoxels_(std::max<std::size_t>(kPieceBytes / (volumes_ * sizeof(Stored)), 1)),
        piece_(pieceVoxels_ * volumes_) {}

  void gather(std::size_t first, std::size_t count, std::size_t voxels, std::vector<float>& out) {
    std::fseek(file_, header_.dataOffset, SEEK_SET);
    for (std::size_t v = 0; v < voxels; v += pieceVoxels_) {
      const std::size_t now = std::min(pieceVoxels_, voxels - v);
      if (std::fread(piece_.data(), volumes_ * sizeof(Stored), now, file_) != now) {
        throw FileError(path_, "the file ends before its last value", "Get the file again from its source");
      }
      for (std::size_t i = 0; i < now; ++i) scatter(&piece_[i * volumes_], first, count, v + i, voxels, out);
    }
  }

 private:
  // Voxels outside the mask were stored as 0 and got no shift.
  void scatter(const Stored* course, std::size_t first, std::size_t count, std::size_t voxel,
               std::size_t voxels, std::vector<float>& out) const {
    const float shift = static_cast<float>(course[0]) > threshold_ ? shift_ : 0.0F;
    for (std::size_t t = 0; t < count; ++t)
      out[t * voxels + voxel] =
          static_cast<float>(unit_ * static_cast<double>(static_cast<float>(course[first + t]) - shift));
  }

  std::FILE* file_;
  const VTC_Header& header_;
  const std::string& path_;
  float shift_, threshold_;
  double unit_;  // of the image, in what is stored
  std::size_t volumes_, pieceVoxels_;
  std::vector<Stored> piece_;
};

template <typename Stored>
void writeVolumes(VolumeGatherer<Stored> gatherer, std::size_t voxels, std::size_t volumes,
                  std::size_t memoryBytes, NiftiWriter& writer) {
  const std::size_t step = std::clamp<std::size_t>(memoryBytes / (voxels * sizeof(float)), 1, volumes);
  std::vector<float> block(step * voxels);
  for (std::size_t t = 0; t < volumes; t += step) {
    const std::size_t now = std::min(step, volumes - t);
    gatherer.gather(t, now, voxels, block);
    writer.writeValues(block.data(), now * voxels);
  }
}

}  // namespace

VTC_Header readVtcFileHeader(const std::string& path) {
  const File file = openFile(path);
  VTC_Header header{};
  if (!readVTCHeader(file.get(), header) || !hasUsableGeometry(header)) {
    throw FileError(path, "it is no VTC file of version 2 or later, or its header is damaged",
                    "Make it anew with tavmap convert");
  }
  const std::uint64_t needed = static_cast<std::uint64_t>(header.dataOffset) +
                               static_cast<std::uint64_t>(sliceValues(header)) *
                                   static_cast<std::uint64_t>(gridOf(header).z) * valueBytes(header);
  if (std::filesystem::file_size(path) < needed) {
    throw FileError(path, "the file ends before its last value", "Get the file again from its source");
  }
  return header;
}

VtcPlace placeOf(const std::string& vtcPath, const VTC_Header& header) {
  if (const auto sidecar = readVtcSidecar(vtcPath)) return {sidecar->affine, sidecar->spaceCode, true};
  return {talairachAffine(header.xStart, header.yStart, header.zStart, header.resolution), kTalairachCode,
          false};
}

void exportVtc(const std::string& vtcPath, const std::string& imagePath, std::size_t memoryBytes) {
  const VTC_Header header = readVtcFileHeader(vtcPath);
  const VtcSidecar sidecar = readVtcSidecar(vtcPath).value_or(VtcSidecar{});
  const File file = openFile(vtcPath);
  NiftiWriter writer(imagePath, imageHeaderOf(vtcPath, header, file.get(), sidecar.shift > 0));
  const std::size_t voxels = sizeOf(header).voxels(), volumes = static_cast<std::size_t>(header.nrOfVolumes);
  if (header.dataType == kVtcFloatData) {
    writeVolumes(VolumeGatherer<float>(file.get(), header, vtcPath, sidecar), voxels, volumes, memoryBytes,
                 writer);
  } else {
    writeVolumes(VolumeGatherer<std::uint16_t>(file.get(), header, vtcPath, sidecar), voxels, volumes,
                 memoryBytes, writer);
  }
  writer.commit();
}

}  // namespace formats
