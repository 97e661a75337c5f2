// Streaming decompression of gzip files of any number of members, in bounded memory. What follows
// the last member and is no gzip member itself (padding) is passed over, as gzip does.
//
// ISA-L decompresses where it was found when the project was configured, zlib elsewhere.
#ifndef TAVMAP_FORMATS_GZIP_READER_H
#define TAVMAP_FORMATS_GZIP_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "formats/byte_source.h"

namespace formats {

class GzipReader : public ByteSource {
 public:
  // `path` is for messages. `inputBytes` is the size of the pieces read from `compressed`.
  GzipReader(std::unique_ptr<ByteSource> compressed, std::string path,
             std::size_t inputBytes = std::size_t{256} << 10U);
  ~GzipReader() override;

  std::size_t read(void* data, std::size_t bytes) override;

  // "ISA-L" or "zlib".
  [[nodiscard]] static const char* engineName();

 private:
  class Inflater;  // one member at a time; the only part that knows the library

  // Between members: makes the next one ready. False at the end of the data.
  bool startNextMember();
  bool refill();
  std::size_t inflateSome(char* data, std::size_t bytes);
  [[noreturn]] void failTruncated() const;

  std::unique_ptr<ByteSource> compressed_;
  std::string path_;
  std::vector<unsigned char> input_;
  std::size_t inputFirst_ = 0, inputEnd_ = 0;  // the unread part of input_
  bool inMember_ = false, ended_ = false, anyMember_ = false;
  std::unique_ptr<Inflater> inflater_;
};

}  // namespace formats

#endif
