// Writing VTC files (version 3), whole or not at all.
#ifndef TAVMAP_FORMATS_VTC_WRITER_H
#define TAVMAP_FORMATS_VTC_WRITER_H

#include <cstddef>
#include <string>

#include "formats/atomic_file.h"
#include "formats/image.h"
#include "io/vtc_header.h"

namespace formats {

enum class VtcType { kFloat32, kUint16 };

// The header of a VTC on the grid of an image: box from 0, resolution 1. Throws FileError (for
// `path`) when the grid or the number of volumes does not fit the file format.
[[nodiscard]] VTC_Header nativeVtcHeader(const std::string& path, const GridSize& size, int volumes,
                                         VtcType type);

// Header, then time courses, voxel by voxel, in the type of the header.
class VtcWriter {
 public:
  // `header.dataOffset`, `tr` and the protocol are not used: the time is given exactly, and no
  // protocol is linked.
  VtcWriter(const std::string& path, const VTC_Header& header, float trMs,
            Durability durability = Durability::kSynced);
  void write(const void* values, std::size_t bytes) { file_.write(values, bytes); }
  // Space for so many bytes of values, see AtomicFile.
  void reserve(std::size_t bytes) { file_.reserve(headerBytes_ + bytes); }
  // So many bytes of zeros, see AtomicFile.
  void skip(std::size_t bytes) { file_.skip(bytes); }
  // See AtomicFile; `offset` counts from the first value.
  void writeRowsAt(const char* rows, std::size_t count, std::size_t rowBytes, std::size_t stride,
                   std::size_t offset) {
    file_.writeRowsAt(rows, count, rowBytes, stride, headerBytes_ + offset);
  }
  void readAt(void* data, std::size_t bytes, std::size_t offset) {
    file_.readAt(data, bytes, headerBytes_ + offset);
  }
  void commit() { file_.commit(); }

 private:
  AtomicFile file_;
  std::size_t headerBytes_;
};

}  // namespace formats

#endif
