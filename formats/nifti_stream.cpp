#include "formats/nifti_stream.h"

#include <fmt/core.h>

#include <algorithm>
#include <vector>

#include "formats/data_types.h"
#include "formats/file_error.h"

namespace formats {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{256} << 10U;
// Deflate cannot do better (258 bytes from 2 bits): a header that promises more is wrong, and
// nothing of the promised size may be allocated.
constexpr std::uint64_t kLargestGzipRatio = 1032;

template <typename T>
void swapAll(T* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = swapBytes(values[i]);
}

}  // namespace

NiftiStream::NiftiStream(const std::string& path) : path_(path), source_(openPlainOrGzip(path)) {
  readHeader();
  requireEnoughData();
}

std::size_t NiftiStream::volumeBytes() const {
  return header().size.voxels() * bytesOf(header().dataType);
}

void NiftiStream::readHeader() {
  std::string bytes(4, '\0');
  bytes.resize(source_->read(bytes.data(), bytes.size()));
  const std::size_t size = niftiHeaderBytes(bytes);
  if (size > 0) {
    bytes.resize(size);
    bytes.resize(4 + source_->read(bytes.data() + 4, size - 4));
  }
  layout_ = decodeNiftiHeader(bytes, path_);
  std::string between(layout_.dataOffset - size, '\0');
  readStored(between.data(), between.size());
  layout_.header.extensions = decodeExtensions(between, layout_.swapped);
}

void NiftiStream::requireEnoughData() const {
  const FileKind kind = kindOfFile(path_);
  const std::uint64_t needed = layout_.dataOffset + layout_.dataBytes;
  const bool enough = kind.gzip ? needed / kLargestGzipRatio <= kind.bytes : needed <= kind.bytes;
  if (!enough) {
    throw FileError(
        path_,
        fmt::format("the file is too short for the {} x {} values of type {} that its header describes",
                    toText(header().size), header().volumes, nameOf(header().dataType)),
        "Get the file again from its source");
  }
}

void NiftiStream::readStored(void* data, std::size_t bytes) {
  if (source_->read(data, bytes) != bytes) {
    throw FileError(path_, "the file ends before its last value", "Get the file again from its source");
  }
}

void NiftiStream::skip(std::size_t bytes) {
  std::vector<char> piece(std::min(bytes, kPieceBytes));
  while (bytes > 0) {
    const std::size_t now = std::min(bytes, piece.size());
    readStored(piece.data(), now);
    bytes -= now;
  }
}

void NiftiStream::readValues(float* values, std::size_t count) {
  readScaled(values, count);
}
void NiftiStream::readValues(double* values, std::size_t count) {
  readScaled(values, count);
}

template <typename Out>
void NiftiStream::readScaled(Out* values, std::size_t count) {
  const Scaling scaling{header().slope, header().intercept};
  withStoredType(header().dataType, [&](auto sample) {
    using Stored = decltype(sample);
    std::vector<Stored> piece(std::min(count, kPieceBytes / sizeof(Stored)));
    for (std::size_t done = 0; done < count;) {
      const std::size_t now = std::min(count - done, piece.size());
      readStored(piece.data(), now * sizeof(Stored));
      if (layout_.swapped) swapAll(piece.data(), now);
      scaleValues(piece.data(), now, scaling, values + done);
      done += now;
    }
  });
}

void NiftiStream::finish() {
  char beyond = 0;
  (void)source_->read(&beyond, 1);
}

}  // namespace formats
