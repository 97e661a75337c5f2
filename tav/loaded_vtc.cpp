#include "tav/loaded_vtc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

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

// Whether 16 bits hold the very value: not a negative zero.
bool isWhole(float value) {
  return value >= 0 && value <= std::numeric_limits<std::uint16_t>::max() && !std::signbit(value) &&
         static_cast<float>(static_cast<std::uint16_t>(value)) == value;
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

// As whole numbers as long as there are no others.
bool LoadedVtc::readFloats(std::FILE* file, std::size_t count, const std::atomic<bool>* cancel) {
  constexpr std::size_t kAtOnce = kBytesAtOnce / sizeof(float);
  std::vector<float> some(std::min(kAtOnce, count));
  shorts_ = std::make_unique_for_overwrite<std::uint16_t[]>(count);
  for (std::size_t done = 0; done < count; done += some.size()) {
    some.resize(std::min(kAtOnce, count - done));
    if (!readBytes(file, some.size() * sizeof(float), cancel, some.data())) return false;
    if (!std::all_of(some.begin(), some.end(), isWhole)) {
      floats_ = std::make_unique_for_overwrite<float[]>(count);
      std::copy(some.begin(), some.end(), std::copy_n(shorts_.get(), done, floats_.get()));
      shorts_.reset();
      done += some.size();
      return readBytes(file, (count - done) * sizeof(float), cancel, floats_.get() + done);
    }
    std::copy(some.begin(), some.end(), shorts_.get() + done);
  }
  header_.dataType = kVtcShortData;
  return true;
}

bool LoadedVtc::readShorts(std::FILE* file, std::size_t count, const std::atomic<bool>* cancel) {
  shorts_ = std::make_unique_for_overwrite<std::uint16_t[]>(count);
  return readBytes(file, count * sizeof(std::uint16_t), cancel, shorts_.get());
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
  const std::size_t values = bytesOf(header) / valueBytes(header);
  const bool isFloat = header.dataType == kVtcFloatData;
  if (isFloat ? vtc->readFloats(file.get(), values, cancel) : vtc->readShorts(file.get(), values, cancel))
    return vtc;
  errors << "Could not read data from vtc '" << path << "'; look at its disk and try again";
  return nullptr;
}

}  // namespace tav
