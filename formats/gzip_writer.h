// Compression into an AtomicFile.
#ifndef TAVMAP_FORMATS_GZIP_WRITER_H
#define TAVMAP_FORMATS_GZIP_WRITER_H

#include <zlib.h>

#include <cstddef>
#include <vector>

#include "formats/atomic_file.h"

namespace formats {

// Writes one gzip member without name and time stamp, so that equal data give equal files.
// Throws FileError as AtomicFile does.
class GzipWriter {
 public:
  // `file` must live as long. `level` is zlib's: 1 fast to 9 small.
  explicit GzipWriter(AtomicFile& file, int level = 4);
  ~GzipWriter();
  GzipWriter(const GzipWriter&) = delete;
  GzipWriter& operator=(const GzipWriter&) = delete;

  void write(const void* data, std::size_t bytes);
  void finish();  // ends the member; the file still has to be committed

 private:
  void pump(int flush);

  AtomicFile& file_;
  z_stream state_{};
  std::vector<unsigned char> output_;
};

}  // namespace formats

#endif
