#include "formats/gzip_writer.h"

#include <algorithm>
#include <new>

namespace formats {
namespace {

constexpr std::size_t kOutputBytes = std::size_t{128} << 10U;
constexpr std::size_t kMaxStepBytes = std::size_t{1} << 30U;
constexpr int kGzipWindowBits = 15 + 16;  // 32 KB window, gzip wrapper
constexpr int kMemoryLevel = 8;           // zlib's default

}  // namespace

GzipWriter::GzipWriter(AtomicFile& file, int level) : file_(file), output_(kOutputBytes) {
  if (deflateInit2(&state_, level, Z_DEFLATED, kGzipWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
}

GzipWriter::~GzipWriter() { deflateEnd(&state_); }

void GzipWriter::write(const void* data, std::size_t bytes) {
  const auto* from = static_cast<const unsigned char*>(data);
  while (bytes > 0) {
    const std::size_t now = std::min(bytes, kMaxStepBytes);
    state_.next_in = const_cast<unsigned char*>(from);  // zlib only reads it
    state_.avail_in = static_cast<uInt>(now);
    pump(Z_NO_FLUSH);
    from += now;
    bytes -= now;
  }
}

void GzipWriter::finish() {
  state_.avail_in = 0;
  pump(Z_FINISH);
}

// Until zlib leaves room in the output buffer, it has more to give.
void GzipWriter::pump(int flush) {
  do {
    state_.next_out = output_.data();
    state_.avail_out = static_cast<uInt>(output_.size());
    deflate(&state_, flush);
    file_.write(output_.data(), output_.size() - state_.avail_out);
  } while (state_.avail_out == 0);
}

}  // namespace formats
