// Compression into an AtomicFile.
//
// ISA-L compresses where it was found when the project was configured, zlib elsewhere: float maps in
// a tenth to a thirtieth of zlib's time, to the same size. Equal data give equal files however they
// are cut into writes, with the same library on processors of the same kind. ISA-L's level 2 gave
// equal bytes on every x86 instruction set from SSE4.2 on, and others where it falls back to portable
// code; its level 3 differs between AVX2 and AVX-512, which is why it is not used. What is read back
// is the same everywhere.
#ifndef TAVMAP_FORMATS_GZIP_WRITER_H
#define TAVMAP_FORMATS_GZIP_WRITER_H

#include <cstddef>
#include <memory>
#include <vector>

#include "formats/atomic_file.h"

namespace formats {

// Writes one gzip member without name and time stamp. Throws FileError as AtomicFile does.
class GzipWriter {
 public:
  // `file` must live as long.
  explicit GzipWriter(AtomicFile& file);
  ~GzipWriter();
  GzipWriter(const GzipWriter&) = delete;
  GzipWriter& operator=(const GzipWriter&) = delete;

  void write(const void* data, std::size_t bytes);
  void finish();  // ends the member; the file still has to be committed

  // "ISA-L" or "zlib".
  [[nodiscard]] static const char* engineName();

 private:
  class Deflater;  // the only part that knows the library

  void compress(const unsigned char* piece, std::size_t bytes, bool last);

  AtomicFile& file_;
  std::unique_ptr<Deflater> deflater_;
  std::vector<unsigned char> piece_;  // not yet a whole one
  std::vector<unsigned char> output_;
};

}  // namespace formats

#endif
