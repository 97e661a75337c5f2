// Bytes in reading order, from a plain or a gzip file.
#ifndef TAVMAP_FORMATS_BYTE_SOURCE_H
#define TAVMAP_FORMATS_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace formats {

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Fills `data`; fewer bytes than asked for mean the end of the data. Throws FileError when the
  // file cannot be read, is damaged, or (gzip) ends early.
  virtual std::size_t read(void* data, std::size_t bytes) = 0;
};

[[nodiscard]] std::unique_ptr<ByteSource> openPlain(const std::string& path);

// Told apart by the first two bytes, not by the name.
[[nodiscard]] std::unique_ptr<ByteSource> openPlainOrGzip(const std::string& path);

struct FileKind {
  std::uint64_t bytes = 0;
  bool gzip = false;
};
// Throws FileError when there is no such readable file, or it is a folder.
[[nodiscard]] FileKind kindOfFile(const std::string& path);

}  // namespace formats

#endif
