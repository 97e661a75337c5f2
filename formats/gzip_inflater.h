// One gzip member at a time, by whichever library was configured. Private to gzip_reader.cpp.
#ifndef TAVMAP_FORMATS_GZIP_INFLATER_H
#define TAVMAP_FORMATS_GZIP_INFLATER_H

#include <cstddef>
#include <cstdint>

#ifdef TAVMAP_HAVE_ISAL
#include <isa-l/igzip_lib.h>
#else
#include <zlib.h>
#endif

namespace formats {

enum class InflateStatus { kMore, kMemberEnd, kDamaged };

struct InflateStep {
  std::size_t consumed = 0, produced = 0;
  InflateStatus status = InflateStatus::kMore;
};

// Sizes per call must fit 32 bits.
#ifdef TAVMAP_HAVE_ISAL
class MemberInflater {
 public:
  MemberInflater() { isal_inflate_init(&state_); }
  void restart() {
    isal_inflate_reset(&state_);
    state_.crc_flag = ISAL_GZIP_NO_HDR_VER;  // verifies the checksum behind the data
    isal_gzip_header_init(&header_);
    inHeader_ = true;
  }
  InflateStep step(unsigned char* in, std::size_t inBytes, unsigned char* out, std::size_t outBytes) {
    state_.next_in = in;
    state_.avail_in = static_cast<std::uint32_t>(inBytes);
    state_.next_out = out;
    state_.avail_out = static_cast<std::uint32_t>(outBytes);
    const InflateStatus status = inHeader_ ? readHeader() : inflateData();
    return {inBytes - state_.avail_in, outBytes - state_.avail_out, status};
  }
  static constexpr const char* kName = "ISA-L";

 private:
  // isal_inflate could read the header too, but forgets what it has seen of one that is spread
  // over two pieces of input.
  InflateStatus readHeader() {
    const int result = isal_read_gzip_header(&state_, &header_);
    if (result == ISAL_END_INPUT) return InflateStatus::kMore;
    if (result != ISAL_DECOMP_OK) return InflateStatus::kDamaged;
    inHeader_ = false;
    return inflateData();
  }
  // Positive results only say that input or output room ran out.
  InflateStatus inflateData() {
    const int result = isal_inflate(&state_);
    if (result < 0 || result == ISAL_NEED_DICT) return InflateStatus::kDamaged;
    const bool ended = state_.block_state == ISAL_BLOCK_FINISH && result == ISAL_DECOMP_OK;
    return ended ? InflateStatus::kMemberEnd : InflateStatus::kMore;
  }

  inflate_state state_{};
  isal_gzip_header header_{};
  bool inHeader_ = false;
};
#else
class MemberInflater {
 public:
  MemberInflater() { usable_ = inflateInit2(&state_, 15 + 16) == Z_OK; }  // 32 KB window, gzip wrapper
  ~MemberInflater() { inflateEnd(&state_); }
  MemberInflater(const MemberInflater&) = delete;
  MemberInflater& operator=(const MemberInflater&) = delete;
  void restart() { inflateReset(&state_); }
  InflateStep step(unsigned char* in, std::size_t inBytes, unsigned char* out, std::size_t outBytes) {
    if (!usable_) return {0, 0, InflateStatus::kDamaged};
    state_.next_in = in;
    state_.avail_in = static_cast<uInt>(inBytes);
    state_.next_out = out;
    state_.avail_out = static_cast<uInt>(outBytes);
    const int result = inflate(&state_, Z_NO_FLUSH);
    InflateStep step{inBytes - state_.avail_in, outBytes - state_.avail_out, InflateStatus::kMore};
    if (result == Z_STREAM_END) step.status = InflateStatus::kMemberEnd;
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
      step.status = InflateStatus::kDamaged;
    return step;
  }
  static constexpr const char* kName = "zlib";

 private:
  z_stream state_{};
  bool usable_ = false;
};
#endif

}  // namespace formats

#endif
