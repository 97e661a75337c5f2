#include "tav/vtc_cache.h"

#include <algorithm>
#include <utility>

#include "io/cnvtcfile.h"
#include "tav/tav.h"

namespace tav {
namespace {

// A piece of this size is still in the processor's cache when its voxels are computed, and large
// enough that the cost of a call does not count.
constexpr std::size_t kPieceBytes = 2 * 1024 * 1024;

std::size_t voxelsInPiece(const VTC_Header& header) {
  const auto volumes = static_cast<std::size_t>(header.nrOfVolumes);
  const std::size_t inSlice = static_cast<std::size_t>(sliceValues(header)) / volumes;
  return std::clamp<std::size_t>(kPieceBytes / (volumes * valueBytes(header)), 1,
                                 std::max<std::size_t>(inSlice, 1));
}

// Data values that the file holds behind its header.
std::size_t valuesInFile(std::FILE* file, const VTC_Header& header) {
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long bytes = std::ftell(file) - header.dataOffset;
  return bytes > 0 ? static_cast<std::size_t>(bytes) / valueBytes(header) : 0;
}

void reportUnreadableHeader(const std::string& name, const TAV_Cond_Pars& cond, std::ostream& errors) {
  errors << "Could not correctly read vtc-header file: " << name << "\nfor condition '" << cond.name
         << "'\nN.B.:VTC version 2 required for this version of the TAV_Plugin!";
}

std::string pathOf(const std::string& name, const std::string& folder) {
  return folder.empty() || name.starts_with('/') ? name : folder + "/" + name;
}

// Null, and a message, when the file cannot be opened or its header not be used.
std::unique_ptr<VtcFile> openVtc(const std::string& name, const std::string& folder,
                                 const TAV_Cond_Pars& cond, std::ostream& errors) {
  std::FILE* const stream = std::fopen(pathOf(name, folder).c_str(), "rb");
  if (stream == nullptr) {
    errors << "Could not open file: " << name << "\nfor condition '" << cond.name << "'";
    return nullptr;
  }
  VTC_Header header{};
  if (!readVTCHeader(stream, header) || !hasUsableGeometry(header)) {
    std::fclose(stream);
    reportUnreadableHeader(name, cond, errors);
    return nullptr;
  }
  return std::make_unique<VtcFile>(name, header, stream);
}

}  // namespace

VtcFile::VtcFile(std::string path, const VTC_Header& fileHeader, std::FILE* stream)
    : name(std::move(path)),
      header(fileHeader),
      fp(stream),
      sliceSize(sliceValues(fileHeader)),
      voxelsPerRead_(voxelsInPiece(fileHeader)),
      bufferSize_(std::min(voxelsPerRead_ * static_cast<std::size_t>(fileHeader.nrOfVolumes),
                           valuesInFile(stream, fileHeader))) {
  if (isFloat()) {
    floatSlice = std::make_unique_for_overwrite<float[]>(bufferSize_);
  } else {
    shortSlice = std::make_unique_for_overwrite<std::uint16_t[]>(bufferSize_);
  }
  rewind();
}

VtcFile::VtcFile(std::string path, std::shared_ptr<const LoadedVtc> vtc)
    : name(std::move(path)),
      header(vtc->header()),
      fp(nullptr),
      loaded(std::move(vtc)),
      sliceSize(sliceValues(header)),
      voxelsPerRead_(voxelsInPiece(header)),
      bufferSize_(0) {}

VtcFile::~VtcFile() {
  if (fp != nullptr) std::fclose(fp);
}

void VtcFile::rewind() {
  nextVoxel_ = 0;
  if (fp != nullptr) std::fseek(fp, header.dataOffset, SEEK_SET);
}

VoxelData VtcFile::piece() const {
  return loaded != nullptr ? dataAt(pieceVoxel_) : VoxelData{floatSlice.get(), shortSlice.get()};
}

VoxelData VtcFile::dataAt(std::size_t voxel) const {
  const std::size_t first = voxel * static_cast<std::size_t>(header.nrOfVolumes);
  if (isFloat()) return {loaded->floats() + first, nullptr};
  return {nullptr, loaded->shorts() + first};
}

bool VtcFile::readVoxels(std::size_t nrOfVoxels) {
  if (loaded != nullptr) {
    pieceVoxel_ = nextVoxel_;
    nextVoxel_ += nrOfVoxels;
    return nextVoxel_ <= gridOf(header).voxels();
  }
  const std::size_t wanted = nrOfVoxels * static_cast<std::size_t>(header.nrOfVolumes);
  if (wanted > bufferSize_) return false;
  void* const buffer =
      isFloat() ? static_cast<void*>(floatSlice.get()) : static_cast<void*>(shortSlice.get());
  return std::fread(buffer, valueBytes(header), wanted, fp) == wanted;
}

bool VtcFile::holdsVoxels(std::size_t nrOfVoxels) const {
  if (loaded != nullptr) return nrOfVoxels <= gridOf(header).voxels();
  return valuesInFile(fp, header) >= nrOfVoxels * static_cast<std::size_t>(header.nrOfVolumes);
}

void reportUnreadable(const std::vector<VtcFile*>& files, const VtcFile* failed, std::size_t nrOfVoxels,
                      std::ostream& errors) {
  const auto first = std::find_if(files.begin(), files.end(), [&](const VtcFile* file) {
    return file == failed || !file->holdsVoxels(nrOfVoxels);
  });
  errors << "Could not read data from vtc '" << (*first)->name << "'\n"
         << "The file was corrupted (not of expected size) or made inaccessible";
}

int Computer::openVTCFiles(const TAV_Pars& request, std::ostream& errors) {
  for (const TAV_Cond_Pars& cond : request.conds) {
    for (const TAV_VTC_intv_set& set : cond.vtcIntvSets) {
      for (const auto& [name, entry] :
           {std::pair{&set.srcVtcName, &set.srcVtc}, {&set.trgVtcName, &set.trgVtc}}) {
        *entry = getOpenVtc(*name);
        if (*entry != nullptr) continue;
        const auto held = options_.loadedVtcs.find(*name);
        auto opened = held != options_.loadedVtcs.end() ? std::make_unique<VtcFile>(*name, held->second)
                                                        : openVtc(*name, options_.vtcFolder, cond, errors);
        if (opened == nullptr) return kTerminalError;
        *entry = vtcFiles.emplace_back(std::move(opened)).get();
      }
    }
  }
  return kSuccess;
}

VtcFile* Computer::getOpenVtc(const std::string& name) const {
  const auto found =
      std::find_if(vtcFiles.begin(), vtcFiles.end(), [&](const auto& file) { return file->name == name; });
  return found == vtcFiles.end() ? nullptr : found->get();
}

int Computer::CleanUp() {
  if (kept_ != nullptr && raw.observed != nullptr) *kept_ = std::move(raw);
  raw = {};
  passes_.reset();
  voxelPath_.reset();  // refers to the time courses
  voiTcs.clear();
  vtcFiles.clear();
  crdBuf.reset();
  crdBufCapacity = 0;
  outcome_ = {};
  return store_->discard();
}

}  // namespace tav
