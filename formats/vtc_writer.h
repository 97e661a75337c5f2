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
[[nodiscard]] VTC_Header nativeVtcHeader(const std::string& path, const GridSize& size, int volumes, VtcType type);

// Header, then time courses, voxel by voxel, in the type of the header.
class VtcWriter {
 public:
  // `header.dataOffset`, `tr` and the protocol are not used: the time is given exactly, and no
  // protocol is linked.
  VtcWriter(const std::string& path, const VTC_Header& header, float trMs,
            Durability durability = Durability::kSynced);
  void write(const void* values, std::size_t bytes) { file_.write(values, bytes); }
  void commit() { file_.commit(); }

 private:
  AtomicFile file_;
};

}  // namespace formats

#endif
