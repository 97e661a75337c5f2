#include "tav/loaded_vtc.h"

#include <algorithm>
#include <cstdio>

#include "io/cnvtcfile.h"
#include "tav/at_once.h"

namespace tav {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

// Between two looks at the flag.
constexpr std::size_t kBytesAtOnce = std::size_t{4} << 20U;

bool readBytes(std::FILE* file, std::size_t count, const std::atomic<bool>* cancel, void* to) {
  auto* bytes = static_cast<unsigned char*>(to);
  for (std::size_t done = 0; done < count;) {
    stopIf(cancel);
    const std::size_t wanted = std::min(kBytesAtOnce, count - done);
    if (std::fread(bytes + done, 1, wanted, file) != wanted) return false;
    done += wanted;
  }
  return true;
}

// A header that promises more than the file has must cost no memory.
bool holds(std::FILE* file, const VTC_Header& header) {
  if (std::fseek(file, 0, SEEK_END) != 0) return false;
  const long bytes = std::ftell(file) - header.dataOffset;
  return bytes >= 0 && static_cast<std::size_t>(bytes) >= LoadedVtc::bytesOf(header) &&
         std::fseek(file, header.dataOffset, SEEK_SET) == 0;
}

}  // namespace

std::size_t LoadedVtc::bytesOf(const VTC_Header& header) {
  return gridOf(header).voxels() * static_cast<std::size_t>(header.nrOfVolumes) * valueBytes(header);
}

std::shared_ptr<const LoadedVtc> LoadedVtc::read(const std::string& path, std::ostream& errors,
                                                 const std::atomic<bool>* cancel) {
  const OpenFile file(std::fopen(path.c_str(), "rb"));
  VTC_Header header{};
  if (file == nullptr || !readVTCHeader(file.get(), header) || !hasUsableGeometry(header) ||
      !holds(file.get(), header)) {
    errors << "Could not read vtc '" << path
           << "': it is missing, damaged or shorter than its header says; import it again";
    return nullptr;
  }
  const std::shared_ptr<LoadedVtc> vtc(new LoadedVtc(header));
  const std::size_t bytes = bytesOf(header), values = bytes / valueBytes(header);
  void* place = nullptr;
  if (header.dataType == kVtcFloatData) {
    vtc->floats_ = std::make_unique_for_overwrite<float[]>(values);
    place = vtc->floats_.get();
  } else {
    vtc->shorts_ = std::make_unique_for_overwrite<std::uint16_t[]>(values);
    place = vtc->shorts_.get();
  }
  if (readBytes(file.get(), bytes, cancel, place)) return vtc;
  errors << "Could not read data from vtc '" << path << "'; look at its disk and try again";
  return nullptr;
}

}  // namespace tav
