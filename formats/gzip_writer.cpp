#include "formats/gzip_writer.h"

#include <algorithm>

#include "formats/gzip_deflater.h"

namespace formats {
namespace {

// Where the input is cut decides where a library ends its blocks, so it is always cut alike.
constexpr std::size_t kPieceBytes = std::size_t{256} << 10U;
constexpr std::size_t kOutputBytes = std::size_t{128} << 10U;

}  // namespace

class GzipWriter::Deflater : public MemberDeflater {};

GzipWriter::GzipWriter(AtomicFile& file)
    : file_(file), deflater_(std::make_unique<Deflater>()), output_(kOutputBytes) {
  piece_.reserve(kPieceBytes);
}

GzipWriter::~GzipWriter() = default;

const char* GzipWriter::engineName() {
  return MemberDeflater::kName;
}

void GzipWriter::write(const void* data, std::size_t bytes) {
  const auto* from = static_cast<const unsigned char*>(data);
  while (bytes > 0) {
    const std::size_t now = std::min(bytes, kPieceBytes - piece_.size());
    if (now == kPieceBytes) {
      compress(from, now, false);
    } else {
      piece_.insert(piece_.end(), from, from + now);
      if (piece_.size() == kPieceBytes) {
        compress(piece_.data(), kPieceBytes, false);
        piece_.clear();
      }
    }
    from += now;
    bytes -= now;
  }
}

void GzipWriter::finish() {
  compress(piece_.data(), piece_.size(), true);
}

// As long as the output buffer gets full, there may be more to come.
void GzipWriter::compress(const unsigned char* piece, std::size_t bytes, bool last) {
  deflater_->give(piece, bytes, last);
  std::size_t got = 0;
  do {
    got = deflater_->take(output_.data(), output_.size());
    file_.write(output_.data(), got);
  } while (got == output_.size());
}

}  // namespace formats
